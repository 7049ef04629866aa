#pragma once
// The add-offset window's fields (app/add_offset_fields.h) filled for the
// open game's offset file: section, text name and decimal offset of a new
// entry, and the command that writes it.
#include "app/add_offset_fields.h"

#include <quillon/inifile.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

class Session;

class AddOffsetForm final : public AddOffsetFields {
public:
    // Opens over the session's ROM; with `presetOffset` (decimal) the offset
    // box is filled and disabled, as when a command hands over an offset it
    // found. The "O&ffset" command also disables Cancel.
    explicit AddOffsetForm(Session& session, std::optional<std::string> presetOffset = std::nullopt,
                           bool cancelEnabled = true);

    const std::vector<std::string>& Sections() const override { return sections_; }
    void ChooseSection(std::size_t index) override;
    // Empty boxes do nothing; bad input is refused with a message and the
    // window stays open.
    bool Add() override;
    // Whether Add wrote an entry.
    bool Added() const { return added_; }

private:
    Session& session_;
    cInifile ini_;
    std::vector<std::string> sections_;
    bool added_ = false;
};

// Whether an offset file can hold `name` as a key that every later read finds:
// not empty, no leading ";" or "#", no blank at either end, no line break,
// "=" or bracket.
bool UsableKeyName(std::string_view name);

// The "Add new offset" menu item: the window with empty boxes.
void ShowAddOffset(Session& session);
// The "Delete selected" menu item.
void DeleteOffset(Session& session);

}  // namespace quillon
