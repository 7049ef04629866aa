#include "edit/add_offset_form.h"
#include "core/hex_text.h"

#include "app/commit.h"
#include "app/session.h"
#include "core/file_io.h"
#include "core/ini_document.h"
#include "edit/text_view.h"
#include "offsets/offset_file.h"
#include "offsets/offset_text.h"
#include "store/writer.h"

#include <quillon/errors.h>

#include <charconv>
#include <cstdio>

namespace quillon {
namespace {

bool HasLineBreak(std::string_view s) { return s.find_first_of("\r\n") != std::string_view::npos; }

// Changes the open game's offset file through the one writer, so the change
// is guarded, journaled and kept in the history. Returns why it could not be
// written, or nothing when it was; an edit that changes nothing is a success.
template <class Edit>
std::optional<std::string> WriteOffsetFile(Session& session, std::string command, std::string subject, Edit edit) {
    try {
        WritePlan plan = OffsetFilePlan(session, std::move(command), std::move(subject), {});
        if (!session.readOnlyReason.empty() || !RecoverJournal(session)) return session.readOnlyReason;
        ini::IniDocument doc(plan.offsetBefore.value_or(""));
        std::optional<std::string> after = edit(doc);
        if (!after) return std::nullopt;
        plan.offsetAfter = std::move(*after);
        const CommitResult result = CommitPlan(plan);
        if (result.outcome == CommitOutcome::Written) return std::nullopt;
        return result.error + (result.outcome == CommitOutcome::RolledBack
                                   ? "\r\nThe offset file was left as it was."
                                   : "\r\nThe offset file will be restored when the ROM is opened again.");
    } catch (const std::exception& e) {
        return std::string(e.what());
    }
}

}  // namespace

bool UsableKeyName(std::string_view name) {
    if (name.empty() || name.front() == ';' || name.front() == '#') return false;
    if (name.front() == ' ' || name.front() == '\t' || name.back() == ' ' || name.back() == '\t') return false;
    return name.find_first_of("\r\n=[]") == std::string_view::npos;
}

AddOffsetForm::AddOffsetForm(Session& session, std::optional<std::string> presetOffset, bool cancelEnabled)
    : session_(session) {
    this->cancelEnabled = cancelEnabled;
    ini_.SetPath(session.OffsetFile());
    std::int32_t count = 0;
    ini_.EnumerateAllSections(sections_, count);
    if (presetOffset) {
        offsetDecimal = *presetOffset;
        offsetEnabled = false;
    }
}

void AddOffsetForm::ChooseSection(std::size_t index) {
    if (index < sections_.size()) sectionName = sections_[index];
}

bool AddOffsetForm::Add() {
    if (sectionName.empty() || textName.empty() || offsetDecimal.empty()) return false;
    auto refuse = [this](std::string_view why) {
        session_.prompter.Message(Icon::Warning, why);
        return false;
    };
    if (HasLineBreak(sectionName) || sectionName.find_first_of("[]") != std::string::npos)
        return refuse("A section name can't contain line breaks, \"[\" or \"]\".");
    if (!UsableKeyName(textName))
        return refuse("A text name can't start with \";\" or \"#\", start or end with a blank, or contain line "
                      "breaks, \"=\", \"[\" or \"]\": the offset file could not hold it.");

    if (offsetEnabled) OfferHexReading(session_.prompter, session_.romPath, offsetDecimal);
    const auto parsed = ParseDecimalOrHexOffset(offsetDecimal);
    if (!parsed) return refuse("The offset must be a whole number from 0 to 4294967295, in decimal or in hexadecimal written with 0x.");
    const std::uint32_t offset = *parsed;
    try {
        std::uint64_t size = io::FileSize(session_.romPath);
        if (offset >= size)
            return refuse("The offset " + offsetDecimal + " lies past the end of the ROM (" + std::to_string(size) +
                          " bytes).");
    } catch (const FileError& e) {
        return refuse(e.what());
    }

    auto add = [&](const ini::IniDocument& doc) { return doc.WithValue(sectionName, textName, PlainHex(offset)); };
    if (auto failed = WriteOffsetFile(session_, "Add offset", sectionName + " / " + textName, add)) {
        session_.prompter.Message(Icon::Critical, "Error: Could not add the Entry!\r\n" + *failed);
        return false;
    }
    added_ = true;
    session_.prompter.Message(Icon::Information, "Text added successfully!");
    Tree_Load(session_, sectionName, textName);
    return true;
}

void ShowAddOffset(Session& session) {
    AddOffsetForm form(session);
    session.prompter.ShowAddOffset(form);
}

void DeleteOffset(Session& session) {
    const TreeNode* node = session.tree.SelectedNode();
    if (!node || node->key.empty()) return;  // nothing selected: ends silently
    if (IsSectionNodeKey(node->key)) {
        const std::string section = node->text;
        if (WriteOffsetFile(session, "Delete section", section,
                            [&](const ini::IniDocument& doc) { return doc.WithoutSection(section); }))
            session.prompter.Message(Icon::Critical, "Error: Could not delete the Section!");
    } else {
        const std::string section = session.tree.SelectedParentText(), key = KeyNameOf(node->key);
        if (WriteOffsetFile(session, "Delete offset", section + " / " + key,
                            [&](const ini::IniDocument& doc) { return doc.WithoutKey(section, key); }))
            session.prompter.Message(Icon::Critical, "Error: Could not delete the Entry!");
    }
    Tree_Load(session);
}

}  // namespace quillon
