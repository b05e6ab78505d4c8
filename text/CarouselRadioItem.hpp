// A row that turns through a list of rows in place: "< row >", Left and Right with wrap-around,
// and the details page of the row shown. `Row` is an InfoType; `Details` is the dialog that shows
// a row's details (owner, text, title, heading, footer).
#pragma once
#include <cstddef>
#include <utility>
#include <vector>

#include "core/Frame.hpp"
#include "text/LabelItem.hpp"

namespace Lanyx {

template <class Row, class Details, class = void> class CarouselRadioItem;

template <class Row, class Details> class CarouselRadioItem<Row, Details, void> : public LabelItem {
public:
    // `owner` owns the details dialogs while they run; it is not owned here.
    CarouselRadioItem(Frame* owner, std::vector<Row> rows)
        : LabelItem("", true), owner(owner), rows(std::move(rows)) {
        Refresh();
    }
    ~CarouselRadioItem() override = default;

    void Previous() {
        if (rows.empty())
            return;
        current = current == 0 ? rows.size() - 1 : current - 1;
        Refresh();
    }
    void Next() {
        if (rows.empty())
            return;
        current = current + 1 >= rows.size() ? 0 : current + 1;
        Refresh();
    }
    // Runs the details page of the row shown.
    void ShowDetails() {
        if (rows.empty())
            return;
        Row& row = rows[current];
        Details(owner, row.GetDetails(), row.GetDetailsTitle(), row.GetDetailsHeading(),
                row.GetDetailsFooter())
            .RunModal();
    }

    bool Empty() const { return rows.empty(); }
    size_t CurrentIndex() const { return current; }
    // The row shown; the list must not be empty.
    Row& Current() { return rows.at(current); }

private:
    void Refresh() { SetText(rows.empty() ? "< >" : "< " + rows[current].GetRow() + " >"); }

    Frame* owner;
    std::vector<Row> rows;
    size_t current = 0;
};

} // namespace Lanyx
