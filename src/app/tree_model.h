#pragma once
// The offset file as a two-level tree: section nodes with their text nodes.
// A plain model; the main window's tree view mirrors it.
#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace quillon {

struct TreeNode {
    std::string key;    // "Parent0001" for a section, "P0001" + key name for a text
    std::string text;   // section name or key name
    std::string image;  // image list key: "small" or one of the people
    std::optional<std::size_t> parent;  // index of the section node
};

class TreeModel {
public:
    // Adds a node; false (and nothing added) when the key is already in the tree.
    bool Add(TreeNode node);
    void Clear();

    const std::vector<TreeNode>& Nodes() const { return nodes_; }
    const TreeNode* Find(const std::string& key) const;
    std::optional<std::size_t> IndexOf(const std::string& key) const;

    // The selected node, by index; cleared with the tree.
    std::optional<std::size_t> Selected() const { return selected_; }
    void Select(std::optional<std::size_t> index) { selected_ = index; }
    const TreeNode* SelectedNode() const { return selected_ ? &nodes_[*selected_] : nullptr; }
    // Text of the selected node's parent: the section of a text node.
    std::string SelectedParentText() const;

private:
    std::vector<TreeNode> nodes_;
    std::unordered_map<std::string, std::size_t> byKey_;
    std::optional<std::size_t> selected_;
};

}  // namespace quillon
