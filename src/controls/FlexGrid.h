#pragma once

// FlexGrid: the suite's flex grid over a Qt table view. Row 0 is the one fixed row and is
// shown as the horizontal header (its texts are the header's); the data rows 1..Rows()-1 are
// the view's rows 0.. . Rows() counts the header row, so a grid with setRows(1) has only the
// header. Cells hold texts. Right to left.
//
// The texts are kept as UTF-8 packed in large blocks, a cell being where its text lies, and a
// text equal to the cell above or on the left is shared, so a grid of 100,000 rows of 17
// columns holds a few tens of megabytes and fills without an allocation per cell. Fill a large
// grid by setting Rows first and then the cells.
//
// A cell, row or column outside the grid raises KavError (Usage): a subscript error, which
// the window's handler reports like any other error.

#include <QByteArrayView>
#include <QString>
#include <QVector>
#include <QWidget>

class QTableView;

namespace kav::controls {

class FlexGridModel;

class FlexGrid : public QWidget {
    Q_OBJECT

public:
    // The alignment codes of ColAlignment.
    enum Alignment {
        flexAlignLeftTop = 0,
        flexAlignLeftCenter = 1,
        flexAlignLeftBottom = 2,
        flexAlignCenterTop = 3,
        flexAlignCenterCenter = 4,
        flexAlignCenterBottom = 5,
        flexAlignRightTop = 6,
        flexAlignRightCenter = 7,
        flexAlignRightBottom = 8,
        flexAlignGeneral = 9,  // numbers right, texts left (mirrored right to left)
    };
    // The codes of Sort.
    enum SortCode {
        flexSortNone = 0,
        flexSortGenericAscending = 1,
        flexSortGenericDescending = 2,
        flexSortNumericAscending = 3,
        flexSortNumericDescending = 4,
        flexSortStringNoCaseAscending = 5,
        flexSortStringNoCaseDescending = 6,
        flexSortStringAscending = 7,
        flexSortStringDescending = 8,
    };

    explicit FlexGrid(QWidget* parent = nullptr);
    ~FlexGrid() override;

    // Rows including the header row; fewer than 1 is taken as 1. Shrinking drops the last
    // rows, growing appends empty ones.
    int Rows() const;
    void setRows(int rows);
    // Columns; fewer than 1 is taken as 1.
    int Cols() const;
    void setCols(int cols);

    QString TextMatrix(int row, int col) const;
    void setTextMatrix(int row, int col, const QString& text);
    // The same from UTF-8 bytes, as a database hands a text over: nothing is decoded until
    // the cell is read or painted.
    void setTextMatrixUtf8(int row, int col, QByteArrayView utf8);

    // "|" between columns; a leading "<", "^" or ">" aligns the column (header and cells)
    // left, centre or right. Sets Cols to the number of entries and row 0 to their texts
    // (blanks kept) and sizes each column to its header text. Row headers (after ";") are
    // not supported: this grid has no fixed column.
    void setFormatString(const QString& format);
    QString FormatString() const { return formatString_; }

    // Column width in twips (1/1440 inch; 15 twips per pixel at 96 dpi). 0 hides the column.
    int ColWidth(int col) const;
    void setColWidth(int col, int twips);

    // Cell alignment of a data column (the Alignment codes); the header keeps its own.
    int ColAlignment(int col) const;
    void setColAlignment(int col, int code);

    // The current cell and the far corner of the selection; setting Row or Col also moves
    // RowSel or ColSel there, so set the selection's end after the current cell. The
    // selection is shown in the view (the header row is never shown selected).
    int Row() const { return row_; }
    void setRow(int row);
    int Col() const { return col_; }
    void setCol(int col);
    int RowSel() const { return rowSel_; }
    void setRowSel(int row);
    int ColSel() const { return colSel_; }
    void setColSel(int col);

    // The first data row shown at the top; setting it scrolls.
    int TopRow() const;
    void setTopRow(int row);

    // Appends a row; its cells take the tab-separated texts from column 0 on.
    void AddItem(const QString& tabSeparated = {});
    // Empties every cell, the header's included; Rows and Cols stay.
    void Clear();

    // Off: changes are not painted until it is switched on again.
    void setRedraw(bool redraw);
    // Shows every change at once. Otherwise the view catches up with added rows and changed
    // cells when control returns to the event loop, so filling a large grid stays fast.
    void Refresh();
    bool Redraw() const { return redraw_; }

    // Sorts the data rows by the column Col with a SortCode: generic (1, 2) compares two cells
    // as numbers when both read as numbers and otherwise as texts without case; numeric (3, 4)
    // by the leading number of the text; text (5 to 8) without or with case, in Persian
    // collation order. Stable: equal cells keep their order. Row and Col stay where they are.
    void Sort(int code);

    // The cell under the mouse at the last mouse event over the grid: MouseRow 0 is the
    // header, -1 outside every row or column.
    int MouseRow() const { return mouseRow_; }
    int MouseCol() const { return mouseCol_; }

    void SetFocus();
    QTableView* view() const { return view_; }

    QSize sizeHint() const override;

signals:
    // A mouse click on a cell or a header cell (after the current cell has moved).
    void Click();
    void DblClick();
    // A typed character (13 Enter, 27 Escape, 8 backspace); set it to 0 to swallow the key.
    // Reference parameters: connect with direct connections only.
    void KeyPress(int& keyAscii);
    // Every key, with its key code (46 Delete, 13 Enter, 37-40 the arrows, letters their
    // capital's code) and the shift mask (1 Shift, 2 Ctrl, 4 Alt); set keyCode to 0 to swallow.
    void KeyDown(int& keyCode, int shift);
    // Row or Col changed, by the user or by code.
    void RowColChange();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void checkRow(int row) const;
    void checkCol(int col) const;
    void showSelection();
    void setCurrent(int row, int col, bool keepSelection);
    void clampCurrent();
    void onCurrentChanged();
    void setMouse(int row, int col);
    int pixels(int twips) const;
    int twips(int pixels) const;

    FlexGridModel* model_;
    QTableView* view_;
    QVector<int> colTwips_;  // -1: the default width
    QString formatString_;
    int row_ = 0, col_ = 0, rowSel_ = 0, colSel_ = 0;
    int mouseRow_ = -1, mouseCol_ = -1;
    bool redraw_ = true;
    bool syncing_ = false;
    bool dragging_ = false;
    bool swallowClick_ = false;
    bool headerPressed_ = false;
};

}  // namespace kav::controls
