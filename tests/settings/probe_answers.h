// Runs tests/probes/resource_probe.exe with the given arguments and reads
// back its "key=value" answers; the answer file is removed afterwards.
#pragma once
#include <map>
#include <string>
#include "qz_test.h"

struct ProbeAnswers {
    DWORD status;
    std::map<std::string, std::string> values;
};

// `fileTag` names the answer file, so that programs running side by side
// do not share one.
ProbeAnswers RunResourceProbe(const std::string &fileTag, const std::string &arguments);
