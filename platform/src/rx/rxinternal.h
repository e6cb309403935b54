// Registry hooks shared inside the platform library.
#pragma once

#include "rx.h"

// Adds a platform class to the class dictionary unless its name is taken.
void acrxAddPlatformClass(AcRxClass* c);
// Removes a platform class from the class dictionary without deleting it.
void acrxRemovePlatformClass(AcRxClass* c);
void acrxSetCurrentModule(const std::wstring& name);
