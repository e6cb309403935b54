// Editing a drawing file behind the store's back, to damage it on purpose.
#pragma once

#include "winstr.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <vector>

inline void execOn(const std::wstring& file, const char* sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(qorToUtf8(file).c_str(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
    sqlite3_close(db);
}

// The stored stream of one object.
inline std::vector<unsigned char> objectBytes(const std::wstring& file, Adesk::UInt64 handle) {
    std::vector<unsigned char> out;
    sqlite3* db = nullptr;
    if (sqlite3_open(qorToUtf8(file).c_str(), &db) != SQLITE_OK) return out;
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, "SELECT data FROM objects WHERE handle = ?", -1, &st, nullptr);
    sqlite3_bind_int64(st, 1, static_cast<sqlite3_int64>(handle));
    if (sqlite3_step(st) == SQLITE_ROW) {
        const auto* p = static_cast<const unsigned char*>(sqlite3_column_blob(st, 0));
        out.assign(p, p + sqlite3_column_bytes(st, 0));
    }
    sqlite3_finalize(st);
    sqlite3_close(db);
    return out;
}

inline void setObjectBytes(const std::wstring& file, Adesk::UInt64 handle,
                           const std::vector<unsigned char>& bytes) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(qorToUtf8(file).c_str(), &db), SQLITE_OK);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, "UPDATE objects SET data = ? WHERE handle = ?", -1, &st, nullptr);
    sqlite3_bind_blob(st, 1, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
    sqlite3_bind_int64(st, 2, static_cast<sqlite3_int64>(handle));
    EXPECT_EQ(sqlite3_step(st), SQLITE_DONE);
    sqlite3_finalize(st);
    sqlite3_close(db);
}
