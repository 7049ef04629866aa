#include <quillon/core.h>

#include <cstdio>

int main() {
    // Touches every area of the interface so that a missing symbol fails the link.
    quillon::cInifile ini;
    ini.SetPath("missing.ini");
    std::vector<std::string> sections;
    std::int32_t count = -1;
    ini.EnumerateAllSections(sections, count);
    bool ok = quillon::PointerHex("71A2B4") == "B4A27108" && quillon::EncodeText("Hi", false) == "C2DD" &&
              quillon::DecodeText("\xC2\xDD", false) == "Hi" && quillon::MakerName("01") == "Nintendo" &&
              count == 0 && !quillon::FileExists("");
    std::puts(ok ? "ok" : "wrong");
    return ok ? 0 : 1;
}
