// Attach steps that fail end the process during the load; what each recorded
// is read back through a witness library that writes the record at the end.
#include <fstream>
#include <string>
#include "qz_test.h"

namespace {

// Each missing string is recorded with its id; a library that lacks the
// cursor set in force fails with a user error, though every string is there.
TEST(AttachCauses, EachMissingStringOrCursorSetIsRecorded)
{
    const std::string witness = ProgramFolder() + "attach_witness.txt";
    const struct { const char *language; ResultCode code; DWORD id; } cases[] = {
        {"Z1", RV_StringNonExistant, 1},   {"ZM", RV_StringNonExistant, 10003}, {"Z9", RV_StringNonExistant, 9},
        {"Z8", RV_StringNonExistant, 800}, {"ZZ", RV_StringNonExistant, 801},   {"NC", RV_UserError, 0}};
    SetEnvironmentVariableA("QZ_ATTACH_WITNESS", witness.c_str());
    for (const auto &c : cases) {
        DeleteFileA(witness.c_str());
        EXPECT_EQ(255u, RunChild(std::string("attach_probe.exe /L") + c.language)) << c.language;
        std::ifstream in(witness);
        DWORD code = 0, id = 0;
        in >> code >> id;
        EXPECT_EQ(static_cast<DWORD>(c.code), code) << c.language;
        EXPECT_EQ(c.id, id) << c.language;
    }
    SetEnvironmentVariableA("QZ_ATTACH_WITNESS", nullptr);
    DeleteFileA(witness.c_str());
}

}  // namespace
