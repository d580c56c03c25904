#pragma once

#include "Controls/Menu.h"

#include <memory>
#include <vector>

namespace farview
{

/// A menu as another process sees it: each entry has a number, by which it is clicked. An entry
/// keeps its number as long as it stands for the same thing, and no number is ever given again, so
/// a click that comes late never means another device.
class MenuLayout
{
public:
    /// Of the menu itself.
    static constexpr int rootId = 0;

    struct Row {
        int id = 0;
        int parent = rootId; ///< the entry whose submenu it is in
        std::shared_ptr<MenuItem> item;
    };

    /// False when the new menu shows and offers just what the one before did.
    bool setMenu(const Menu& menu);
    /// Counts the changes.
    unsigned revision() const { return mRevision; }
    /// Submenus follow their entries.
    const std::vector<Row>& rows() const { return mRows; }
    /// Null when there is no such entry (any more).
    const Row* row(int id) const;

    /// The user's door: performs the entry, when it can be chosen now. False when not.
    bool choose(int id) const;

private:
    void addRows(const Menu& menu, int parent, std::vector<Row>& earlier);
    int idFor(const MenuItem& item, std::vector<Row>& earlier);

    std::vector<Row> mRows;
    unsigned mRevision = 1;
    int mLastId = 0;
};

/// Whether both entries show the same text, mark and state.
bool looksSame(const MenuItem& left, const MenuItem& right);
/// Asks the entry once more whether it can be chosen, and performs it. False when it cannot.
bool choose(const std::shared_ptr<MenuItem>& item);

} // namespace farview
