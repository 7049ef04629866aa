#pragma once
// The offset file as a two-level tree: section nodes with their text nodes.
// A plain model; the main window's tree view shows it.
#include <cstddef>
#include <unordered_map>
#include <utility>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

struct TreeNode {
    std::string key;         // "Parent0001" for a section, "P0001" + key name for a text
    std::string text;        // section name or key name
    std::string_view image;  // image list key ("small" or one of the people); static text
    std::optional<std::size_t> parent;  // index of the section node
};

class TreeModel {
public:
    // `offset` is a text's offset as the offset file writes it; none for a section.
    void Add(TreeNode node, std::string_view offset = {}) {
        nodes_.push_back(std::move(node));
        offsetSpans_.push_back({offsets_.size(), offset.size()});
        offsets_.append(offset);
        ++generation_;
    }
    std::string_view OffsetOf(std::size_t index) const {
        const auto [at, size] = offsetSpans_[index];
        return std::string_view(offsets_).substr(at, size);
    }
    void Reserve(std::size_t count) {
        nodes_.reserve(count);
        offsetSpans_.reserve(count);
    }
    void Clear();

    // The image of a section's texts: drawn once per section name, then kept
    // for the model's lifetime so that rebuilds show the same people.
    template <class Draw>
    std::string_view SectionImage(const std::string& section, Draw draw) {
        auto [it, added] = sectionImages_.try_emplace(section);
        if (added) it->second = draw();
        return it->second;
    }

    const std::vector<TreeNode>& Nodes() const { return nodes_; }
    // Counts changes of the nodes, so that views can tell cheaply that nothing changed.
    std::size_t Generation() const { return generation_; }

    // The selected node, by index; cleared with the tree.
    std::optional<std::size_t> Selected() const { return selected_; }
    void Select(std::optional<std::size_t> index) { selected_ = index; }
    const TreeNode* SelectedNode() const { return selected_ ? &nodes_[*selected_] : nullptr; }
    // Text of the selected node's parent: the section of a text node.
    std::string SelectedParentText() const;

private:
    std::vector<TreeNode> nodes_;
    std::string offsets_;  // the offsets of all texts, one after the other
    std::vector<std::pair<std::size_t, std::size_t>> offsetSpans_;
    std::optional<std::size_t> selected_;
    std::size_t generation_ = 0;
    std::unordered_map<std::string, std::string_view> sectionImages_;  // not emptied by Clear()
};

}  // namespace quillon
