#pragma once
// Checks a window's layout the way a reviewer looks at its picture: every
// visible control lies inside the window, no two sibling controls overlap,
// and every one-line caption fits its control.
#include <QStringList>

class QWidget;

namespace quillon::test {

// One line per problem found; empty when the window looks right.
QStringList LayoutProblems(const QWidget& window);

}  // namespace quillon::test
