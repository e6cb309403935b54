// The module's classes in registration order: initialisation and unload both follow it.
#pragma once

#include "module/qorclass.h"

#include <span>

std::span<const QorClassRow> qorClassTable();
