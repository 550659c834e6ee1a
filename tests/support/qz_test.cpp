#include "qz_test.h"
#include <cstdio>

std::string ProgramFolder()
{
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string folder(path);
    return folder.substr(0, folder.find_last_of('\\') + 1);
}

DWORD RunChild(const std::string &commandLine, DWORD timeoutMs)
{
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    std::string line = commandLine;
    std::string folder = ProgramFolder();
    if (!CreateProcessA(nullptr, &line[0], nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(),
                        &startup, &process))
        return static_cast<DWORD>(-1);
    DWORD status = static_cast<DWORD>(-1);
    if (WaitForSingleObject(process.hProcess, timeoutMs) == WAIT_OBJECT_0)
        GetExitCodeProcess(process.hProcess, &status);
    else
        TerminateProcess(process.hProcess, 1);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return status;
}

DateTimeValue MakeDate(unsigned year, unsigned month, unsigned day, unsigned hour, unsigned minute,
                       unsigned second)
{
    DateTimeValue value;
    OSSetDateTime(&value, year, month, day, hour, minute, second, 0);
    return value;
}

std::string ToText(const DateTimeValue &v)
{
    char text[48];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u+%u", v.year, v.month, v.day,
                  v.hour, v.minute, v.second, v.hourBias);
    return text;
}
