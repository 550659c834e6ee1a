// Attach steps that fail end the process during the load; what each recorded
// is read back through a witness library that writes the record at the end.
#include <fstream>
#include <string>
#include "qz_test.h"

namespace {

TEST(AttachCauses, EachMissingStringIsRecordedWithItsId)
{
    const std::string witness = ProgramFolder() + "attach_witness.txt";
    const struct { const char *language; DWORD id; } cases[] = {
        {"Z1", 1}, {"ZM", 10003}, {"Z9", 9}, {"Z8", 800}, {"ZZ", 801}};
    SetEnvironmentVariableA("QZ_ATTACH_WITNESS", witness.c_str());
    for (const auto &c : cases) {
        DeleteFileA(witness.c_str());
        EXPECT_EQ(255u, RunChild(std::string("attach_probe.exe /L") + c.language)) << c.language;
        std::ifstream in(witness);
        DWORD code = 0, id = 0;
        in >> code >> id;
        EXPECT_EQ(static_cast<DWORD>(RV_StringNonExistant), code) << c.language;
        EXPECT_EQ(c.id, id) << c.language;
    }
    SetEnvironmentVariableA("QZ_ATTACH_WITNESS", nullptr);
    DeleteFileA(witness.c_str());
}

}  // namespace
