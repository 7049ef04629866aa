#pragma once
// The add-offset window's boxes and commands as the window binds to them.
// The prompter shows it; edit/add_offset_form.h fills it in for the open
// game's offset file.
#include <cstddef>
#include <string>
#include <vector>

namespace quillon {

class AddOffsetFields {
public:
    virtual ~AddOffsetFields() = default;

    std::string sectionName;                 // Text1
    std::string textName;                    // Text2
    std::string offsetDecimal;               // Text3
    bool offsetEnabled = true;               // Text3
    bool cancelEnabled = true;               // Command2
    virtual const std::vector<std::string>& Sections() const = 0;  // Combo1

    // Copies the chosen section into the section box.
    virtual void ChooseSection(std::size_t index) = 0;
    // "&Add to INI": true when the entry was written and the window closes.
    virtual bool Add() = 0;
};

}  // namespace quillon
