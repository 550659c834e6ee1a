#include "registry_scratch.h"

static const char kScratchRoot[] = "Software\\Tarvo\\Kelendrix\\98.0\\QzTest\\";

void ScratchKeyTest::SetUp()
{
    ErrorStateTest::SetUp();
    const ::testing::TestInfo *info = ::testing::UnitTest::GetInstance()->current_test_info();
    path = std::string(kScratchRoot) + info->test_suite_name() + "." + info->name();
    RegDeleteTreeA(HKEY_CURRENT_USER, path.c_str());
}

void ScratchKeyTest::TearDown()
{
    RegDeleteTreeA(HKEY_CURRENT_USER, path.c_str());
    ErrorStateTest::TearDown();
}

void ScratchKeyTest::Store(const char *name, DWORD type, const void *data, DWORD size)
{
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0,
                                             KEY_WRITE, nullptr, &key, nullptr));
    EXPECT_EQ(ERROR_SUCCESS,
              RegSetValueExA(key, name, 0, type, static_cast<const BYTE *>(data), size));
    RegCloseKey(key);
}

void ScratchKeyTest::StoreText(const char *name, const char *text)
{
    Store(name, REG_SZ, text, static_cast<DWORD>(strlen(text) + 1));
}

bool ScratchKeyTest::KeyExists() const
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return false;
    RegCloseKey(key);
    return true;
}

SavedValue::SavedValue(HKEY root, const char *keyPath, const char *name)
    : root_(root), keyPath_(keyPath), name_(name)
{
    DWORD size = 0;
    if (RegGetValueA(root_, keyPath, name, RRF_RT_ANY | RRF_NOEXPAND, &type_, nullptr, &size) ==
        ERROR_SUCCESS) {
        data_.resize(size);
        existed_ = RegGetValueA(root_, keyPath, name, RRF_RT_ANY | RRF_NOEXPAND, &type_,
                                size ? data_.data() : nullptr, &size) == ERROR_SUCCESS;
        data_.resize(size);
    }
}

SavedValue::~SavedValue()
{
    if (existed_)
        Set(type_, data_.data(), static_cast<DWORD>(data_.size()));
    else
        Remove();
}

void SavedValue::SetText(const char *text)
{
    Set(REG_SZ, text, static_cast<DWORD>(strlen(text) + 1));
}

void SavedValue::Set(DWORD type, const void *data, DWORD size)
{
    HKEY key = nullptr;
    if (RegCreateKeyExA(root_, keyPath_.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                        nullptr) != ERROR_SUCCESS)
        return;
    RegSetValueExA(key, name_.c_str(), 0, type, static_cast<const BYTE *>(data), size);
    RegCloseKey(key);
}

void SavedValue::Remove()
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(root_, keyPath_.c_str(), 0, KEY_WRITE, &key) != ERROR_SUCCESS)
        return;
    RegDeleteValueA(key, name_.c_str());
    RegCloseKey(key);
}

bool GuardIntact(const char *buffer, size_t from, size_t size)
{
    for (size_t i = from; i < size; ++i)
        if (buffer[i] != kGuard)
            return false;
    return true;
}
