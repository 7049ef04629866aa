#include "offsets/offset_file.h"

#include "app/session.h"
#include "core/file_io.h"
#include "core/ini_document.h"

#include <quillon/errors.h>
#include <quillon/header.h>
#include <quillon/rom.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <random>
#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <unordered_set>

namespace quillon {
namespace {

constexpr std::string_view kStars = "'********************************************'";

constexpr std::array<const char*, 9> kPeople = {"pep", "fat", "girl", "guy", "nurse",
                                                "dude", "gramps", "heroine", "nerd"};

// k = r * 8 rounded half to even, for r in [0, 1): the ends come half as often.
const char* DrawSectionImage(std::mt19937& rng) {
    double r = std::uniform_real_distribution<double>(0.0, 1.0)(rng);
    auto k = static_cast<std::size_t>(std::nearbyint(r * 8));
    return kPeople[std::min<std::size_t>(k, 8)];
}

// A value without the quotes around it.
std::string_view Unquoted(std::string_view value) {
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') value = value.substr(1, value.size() - 2);
    return value;
}

// Which node to select after the rebuild: the one that was selected, by its
// section and key names (node keys shift when sections are deleted).
struct SelectionMemo {
    std::string section, key;
    bool any = false;
};

SelectionMemo Remember(const TreeModel& tree) {
    const TreeNode* node = tree.SelectedNode();
    if (!node) return {};
    if (!node->parent) return {node->text, {}, true};
    return {tree.SelectedParentText(), node->text, true};
}

bool Build(Session& session, const SelectionMemo& memo);

}  // namespace

std::string ShortDate() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
#if defined(_WIN32)
    localtime_s(&local, &now);
#else
    localtime_r(&now, &local);
#endif
    char buf[16];
    std::strftime(buf, sizeof buf, "%Y-%m-%d", &local);
    return buf;
}

std::string OffsetFileHead(const std::filesystem::path& rom, std::string_view date) {
    const std::string crlf = "\r\n";
    std::string head;
    auto line = [&](std::string_view text) { head.append(text).append(crlf); };
    line(kStars);
    line("'");
    line("' Quillon Offset-file");
    line("'");
    line("' Created with Quillon Version: 3.1.1");
    line("'");
    line("' Created on: " + std::string(date));
    line("'");
    line(kStars);
    line("'");
    line("' ROM Name     : " + GetRomName(rom));
    line("' ROM Code     : " + GetRomCode(rom));
    line("' ROM Language : " + LanguageName(GetRomLanguage(rom)));
    line("' ROM Maker    : " + MakerName(GetMakerCode(rom)));
    line("'");
    head.append(kStars);
    return head;
}

namespace {

// Positions as at least four digits with leading zeros.
void AppendPosition(std::string& out, std::size_t position) {
    char digits[24];
    auto [end, ec] = std::to_chars(digits, digits + sizeof digits, position);
    for (auto n = end - digits; n < 4; ++n) out.push_back('0');
    out.append(digits, end);
}

}  // namespace

std::string SectionNodeKey(std::size_t position) {
    std::string key = "Parent";
    AppendPosition(key, position);
    return key;
}

std::string TextNodeKey(std::size_t position, std::string_view keyName) {
    std::string key;
    key.reserve(5 + keyName.size());
    key.push_back('P');
    AppendPosition(key, position);
    key.append(keyName);
    return key;
}

bool IsSectionNodeKey(std::string_view nodeKey) { return nodeKey.find("Parent") != std::string_view::npos; }

std::string KeyNameOf(std::string_view nodeKey) {
    return nodeKey.size() > 5 ? std::string(nodeKey.substr(5)) : std::string();
}

bool LoadTree(Session& session) { return Build(session, Remember(session.tree)); }

bool LoadTree(Session& session, std::string_view section, std::string_view key) {
    return Build(session, {std::string(section), std::string(key), true});
}

namespace {

bool Build(Session& session, const SelectionMemo& memo) {
    session.tree.Clear();
    session.ini.SetPath(session.OffsetFile());

    try {
        std::string text = FileExists(session.OffsetFile()) ? io::ReadAll(session.OffsetFile()) : std::string();
        ini::IniDocument doc(std::move(text));
        // Keys of a section name come from its first section, as a lookup by name gives them.
        std::unordered_map<std::string, const ini::IniDocument::Section*> firstByName;
        firstByName.reserve(doc.Sections().size());
        for (const auto& section : doc.Sections()) firstByName.emplace(ini::FoldedName(section.name), &section);
        session.tree.Reserve(static_cast<std::size_t>(std::count(doc.Text().begin(), doc.Text().end(), '\n')) + 1);

        std::mt19937 rng(static_cast<std::uint32_t>(
            std::chrono::steady_clock::now().time_since_epoch().count()));
        std::unordered_set<std::string_view> keysOfSection;  // node keys repeat only within a section
        std::size_t position = 0;
        for (const auto& section : doc.Sections()) {
            if (section.name.empty()) continue;  // nameless headers are not listed
            ++position;
            const std::string_view image =
                session.tree.SectionImage(std::string(section.name), [&] { return DrawSectionImage(rng); });
            const std::size_t parent = session.tree.Nodes().size();
            session.tree.Add({SectionNodeKey(position), std::string(section.name), "small", std::nullopt});
            if (memo.any && memo.key.empty() && memo.section == section.name && !session.tree.Selected())
                session.tree.Select(parent);
            keysOfSection.clear();
            for (const auto& key : doc.Keys(*firstByName.at(ini::FoldedName(section.name)))) {
                if (!keysOfSection.insert(key.name).second) {
                    session.prompter.Message(
                        Icon::Critical,
                        "Error: A Key used in the Offsets file is not unique!\r\n"
                        "Please make sure all Key and Sections names are unique and fix them if needed!");
                    return false;
                }
                session.tree.Add({TextNodeKey(position, key.name), std::string(key.name), image, parent}, Unquoted(key.value));
                if (memo.any && memo.key == key.name && memo.section == section.name && !session.tree.Selected())
                    session.tree.Select(session.tree.Nodes().size() - 1);
            }
        }
    } catch (const TypeMismatch&) {
        session.prompter.Message(Icon::Critical, "Error: Type mismatch!");
        return false;
    } catch (const std::exception& e) {
        session.prompter.Message(Icon::Critical, std::string("Error: #75\r\n") + e.what() + "!");
        return false;
    }
    return true;
}

}  // namespace
}  // namespace quillon
