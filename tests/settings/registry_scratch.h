// Registry helpers for the settings tests: a scratch key of the test's own
// under the product key, removed afterwards, and a saved value that is put
// back as it was, so every test starts from a known state.
#pragma once
#include <string>
#include <vector>
#include "qz_test.h"

// "Software\Tarvo\Kelendrix\98.0\QzTest\<test name>" under the current user,
// deleted before and after the test.
class ScratchKeyTest : public ErrorStateTest {
protected:
    void SetUp() override;
    void TearDown() override;
    // Stores raw bytes of any type under the scratch key.
    void Store(const char *name, DWORD type, const void *data, DWORD size);
    void StoreText(const char *name, const char *text);
    bool KeyExists() const;
    std::string path;
};

// Saves one value on construction and restores it (or its absence) on
// destruction.
class SavedValue {
public:
    SavedValue(HKEY root, const char *keyPath, const char *name);
    ~SavedValue();
    // Stores a text, raw bytes, or removes the value.
    void SetText(const char *text);
    void Set(DWORD type, const void *data, DWORD size);
    void Remove();

private:
    HKEY root_;
    std::string keyPath_, name_;
    bool existed_ = false;
    DWORD type_ = 0;
    std::vector<BYTE> data_;
};

// Fills a buffer with a guard byte and tells whether bytes from `from` on
// still hold it.
const char kGuard = '\x5A';
bool GuardIntact(const char *buffer, size_t from, size_t size);
