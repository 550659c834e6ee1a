#include "probe_answers.h"
#include <fstream>

ProbeAnswers RunResourceProbe(const std::string &fileTag, const std::string &arguments)
{
    std::string file = "resource_probe_" + fileTag + ".txt";
    std::string full = ProgramFolder() + file;
    DeleteFileA(full.c_str());
    ProbeAnswers answers;
    answers.status = RunChild("resource_probe.exe " + file + " " + arguments);
    std::ifstream in(full);
    std::string line;
    while (std::getline(in, line)) {
        size_t equals = line.find('=');
        if (equals != std::string::npos)
            answers.values[line.substr(0, equals)] = line.substr(equals + 1);
    }
    in.close();
    DeleteFileA(full.c_str());
    return answers;
}
