#pragma once

#include "LibMarkup/markup/zbmarkupelement.h"
#include "LibMarkup/markup/zbmarkupparagraph.h"
#include "LibMarkup/markup/zbmarkuptablecell.h"

#include <vector>

namespace Tervalon {

// A grid of cells with optional column titles. Sizes are set first and may
// grow later; cells keep their places when the grid grows. Cells are kept
// row by row.
class ZBMarkupTable : public ZBMarkupElement {
public:
    // How plain text lines up a column; HTML leaves it to the browser.
    enum E_Align { E_AlignLeft = 0, E_AlignRight = 1 };

    ZBMarkupTable(int columns = 0, int rows = 0);

    ZBMarkupElement* clone() const override;
    // Cells joined by tabs, rows by line feeds, the titles first.
    std::string get_raw_text() const override;
    void dump(std::ostream& out, int indent) const override;

    int set_columns(int columns);
    int set_rows(int rows);
    // Adds one empty row at the bottom and returns its index.
    int add_row();
    int get_ncolumns() const { return m_columns; }
    int get_nrows() const { return m_rows; }

    int set_title(const std::string& text, int column);
    // For a title with its own look; the table takes a copy.
    int set_title(const ZBMarkupParagraph& title, int column);
    bool has_titles() const;
    const ZBMarkupParagraph* get_title(int column) const;

    // Replaces the cell's content with one text in the given look.
    int set_cell(const std::string& text, int column, int row, const std::string& foreground = std::string(),
                 const std::string& background = std::string(), bool bold = false, bool italics = false);
    // Null with an error when out of the grid.
    ZBMarkupTableCell* get_cell(int column, int row);
    const ZBMarkupTableCell* get_cell(int column, int row) const;

    void set_alignment(int column, E_Align align);
    E_Align get_alignment(int column) const;

    // Orders the rows by one column's text: numbers by value before other
    // texts, texts in byte order; equal rows keep their order.
    int sort(int column, bool descending = false);

    int m_columns;
    int m_rows;
    std::vector<ZBMarkupParagraph> m_title;
    std::vector<ZBMarkupTableCell> m_cell;
    std::vector<int> m_align;

protected:
    bool same_content(const ZBMarkupElement& other) const override;

private:
    int check_cell(int column, int row) const;
};

} // namespace Tervalon
