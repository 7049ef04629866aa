#include "app/tree_model.h"

namespace quillon {

void TreeModel::Clear() {
    nodes_.clear();
    offsets_.clear();
    offsetSpans_.clear();
    selected_.reset();
    ++generation_;
}

std::string TreeModel::SelectedParentText() const {
    const TreeNode* node = SelectedNode();
    if (!node || !node->parent) return {};
    return nodes_[*node->parent].text;
}

}  // namespace quillon
