// Sets the system's international values for one test (a null text removes
// the value) and puts the old ones back afterwards, re-reading the
// conventions both times.
#pragma once
#include <memory>
#include <string>
#include <utility>
#include <vector>
#include "qz_test.h"

class IntlConventions {
public:
    IntlConventions(std::initializer_list<std::pair<const char *, const char *>> values)
    {
        HKEY key = Open();
        for (const auto &value : values) {
            Saved saved{value.first, "", false};
            char text[260] = {};
            DWORD size = sizeof text - 1, type = 0;
            if (RegQueryValueExA(key, value.first, nullptr, &type, reinterpret_cast<BYTE *>(text),
                                 &size) == ERROR_SUCCESS) {
                saved.existed = true;
                saved.text = text;
            }
            saved_.push_back(saved);
            if (!value.second)  // null: the system has no such value
                RegDeleteValueA(key, value.first);
            else
                RegSetValueExA(key, value.first, 0, REG_SZ, reinterpret_cast<const BYTE *>(value.second),
                               static_cast<DWORD>(strlen(value.second) + 1));
        }
        RegCloseKey(key);
        OSDateTimeGetWinIniSettings();
    }
    ~IntlConventions()
    {
        HKEY key = Open();
        for (const Saved &saved : saved_) {
            if (saved.existed)
                RegSetValueExA(key, saved.name.c_str(), 0, REG_SZ,
                               reinterpret_cast<const BYTE *>(saved.text.c_str()),
                               static_cast<DWORD>(saved.text.size() + 1));
            else
                RegDeleteValueA(key, saved.name.c_str());
        }
        RegCloseKey(key);
        OSDateTimeGetWinIniSettings();
    }

private:
    struct Saved {
        std::string name, text;
        bool existed;
    };
    static HKEY Open()
    {
        HKEY key = nullptr;
        RegCreateKeyExA(HKEY_CURRENT_USER, "Control Panel\\International", 0, nullptr, 0,
                        KEY_READ | KEY_WRITE, nullptr, &key, nullptr);
        return key;
    }
    std::vector<Saved> saved_;
};

// The three conventions the round trips run under.
#define CONVENTIONS_MONTH_FIRST_12H                                                               \
    {{"iDate", "0"}, {"iTime", "0"}, {"sDate", "/"}, {"sTime", ":"}, {"sShortDate", "M/d/yyyy"}, \
     {"sLongDate", "dddd MMMM d yyyy"}, {"sTimeFormat", "h:mm:ss tt"}, {"s1159", "AM"}, {"s2359", "PM"}}
#define CONVENTIONS_DAY_FIRST_24H                                                                 \
    {{"iDate", "1"}, {"iTime", "1"}, {"sDate", "."}, {"sTime", ":"}, {"sShortDate", "dd.MM.yyyy"}, \
     {"sLongDate", "dddd d MMMM yyyy"}, {"sTimeFormat", "HH:mm:ss"}, {"s1159", ""}, {"s2359", ""}}
#define CONVENTIONS_YEAR_FIRST                                                                    \
    {{"iDate", "2"}, {"iTime", "1"}, {"sDate", "-"}, {"sTime", "."}, {"sShortDate", "yyyy-MM-dd"}, \
     {"sLongDate", "yyyy MMMM d"}, {"sTimeFormat", "HH.mm.ss"}, {"s1159", "AM"}, {"s2359", "PM"}}

// The three by number: 0 month first, 1 day first, 2 year first.
inline std::unique_ptr<IntlConventions> Conventions(int which)
{
    return std::unique_ptr<IntlConventions>(which == 0   ? new IntlConventions(CONVENTIONS_MONTH_FIRST_12H)
                                            : which == 1 ? new IntlConventions(CONVENTIONS_DAY_FIRST_24H)
                                                         : new IntlConventions(CONVENTIONS_YEAR_FIRST));
}
