// How many inputs and which seed: an argument, else an environment value,
// else the fuzzer's default.
#pragma once
#include <cstdlib>

inline unsigned long Setting(int argc, char **argv, int index, const char *name, unsigned long fallback)
{
    if (argc > index)
        return std::strtoul(argv[index], nullptr, 10);
    if (const char *value = std::getenv(name))
        return std::strtoul(value, nullptr, 10);
    return fallback;
}
