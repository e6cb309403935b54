// Editing a drawing file behind the store's back, to damage it on purpose.
#pragma once

#include "winstr.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>

inline void execOn(const std::wstring& file, const char* sql)
{
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(qorToUtf8(file).c_str(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
    sqlite3_close(db);
}
