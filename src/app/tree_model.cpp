#include "app/tree_model.h"

namespace quillon {

bool TreeModel::Add(TreeNode node) {
    if (!byKey_.emplace(node.key, nodes_.size()).second) return false;
    nodes_.push_back(std::move(node));
    return true;
}

void TreeModel::Clear() {
    nodes_.clear();
    byKey_.clear();
    selected_.reset();
}

std::optional<std::size_t> TreeModel::IndexOf(const std::string& key) const {
    auto it = byKey_.find(key);
    if (it == byKey_.end()) return std::nullopt;
    return it->second;
}

const TreeNode* TreeModel::Find(const std::string& key) const {
    auto index = IndexOf(key);
    return index ? &nodes_[*index] : nullptr;
}

std::string TreeModel::SelectedParentText() const {
    const TreeNode* node = SelectedNode();
    if (!node || !node->parent) return {};
    return nodes_[*node->parent].text;
}

}  // namespace quillon
