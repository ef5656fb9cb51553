#include "controls/FlexGrid.h"

#include <sys/mman.h>

#include <QAbstractTableModel>
#include <QAnyStringView>
#include <QCollator>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStringEncoder>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "base/Errors.h"
#include "session/Ui.h"
#include "session/Vb.h"
#include "session/WindowSupport.h"

using namespace Qt::StringLiterals;

namespace kav::controls {

namespace {

Qt::Alignment alignmentOf(int code) {
    switch (code) {
        case 0:
            return Qt::AlignLeft | Qt::AlignTop;
        case 1:
            return Qt::AlignLeft | Qt::AlignVCenter;
        case 2:
            return Qt::AlignLeft | Qt::AlignBottom;
        case 3:
            return Qt::AlignHCenter | Qt::AlignTop;
        case 4:
            return Qt::AlignCenter;
        case 5:
            return Qt::AlignHCenter | Qt::AlignBottom;
        case 6:
            return Qt::AlignRight | Qt::AlignTop;
        case 7:
            return Qt::AlignRight | Qt::AlignVCenter;
        case 8:
            return Qt::AlignRight | Qt::AlignBottom;
        default:
            return {};
    }
}

[[noreturn]] void outOfRange(const QString& what, int value) {
    throw KavError(
        KavError::Kind::Usage,
        u"انديس خارج از محدوده است (Subscript out of range): %1 = %2"_s.arg(what).arg(value));
}

// A stable merge sort of positions that stays safe with any comparison, even one that is
// not a strict order (the generic sort's mix of numbers and texts is not transitive).
template <class Cmp>
void mergeSort(std::vector<int>& items, Cmp cmp) {
    std::vector<int> buffer(items.size());
    for (size_t width = 1; width < items.size(); width *= 2) {
        for (size_t lo = 0; lo < items.size(); lo += 2 * width) {
            const size_t mid = std::min(lo + width, items.size());
            const size_t hi = std::min(lo + 2 * width, items.size());
            size_t i = lo, j = mid, k = lo;
            while (i < mid && j < hi)
                buffer[k++] = cmp(items[j], items[i]) < 0 ? items[j++] : items[i++];
            while (i < mid) buffer[k++] = items[i++];
            while (j < hi) buffer[k++] = items[j++];
        }
        items.swap(buffer);
    }
}

}  // namespace

// Memory for the large arrays of a big grid. Past a few megabytes it asks the system for huge
// pages, so filling a grid of 100,000 rows takes a few dozen page faults instead of
// thousands; on a virtual machine each fault costs several microseconds.
constexpr size_t HugePage = size_t(1) << 21;

void* allocateBlock(size_t bytes, bool huge) {
    void* p = nullptr;
    if (huge) {
        const size_t rounded = (bytes + HugePage - 1) & ~(HugePage - 1);
        p = std::aligned_alloc(HugePage, rounded);
#ifdef MADV_HUGEPAGE
        if (p) madvise(p, rounded, MADV_HUGEPAGE);
#endif
    } else {
        p = std::malloc(bytes);
    }
    if (!p) throw std::bad_alloc();
    return p;
}

struct FreeBlock {
    void operator()(void* p) const { std::free(p); }
};

// The allocator of a grid's cell array: huge pages from 2 MiB on.
template <class T>
struct BlockAllocator {
    using value_type = T;
    BlockAllocator() = default;
    template <class U>
    BlockAllocator(const BlockAllocator<U>&) {}
    T* allocate(size_t n) {
        return static_cast<T*>(allocateBlock(n * sizeof(T), n * sizeof(T) >= HugePage));
    }
    void deallocate(T* p, size_t) { std::free(p); }
    friend bool operator==(BlockAllocator, BlockAllocator) { return true; }
};

// The grid's texts, kept compactly: UTF-8 bytes packed one after another in large blocks,
// and for each cell where its text lies. Filling a grid costs no allocation per cell; a
// text is made a QString only when it is read or painted.
struct TextRef {
    quint32 offset = 0;  // block << BlockBits | position; for a long text, its index in long_
    quint32 size = 0;    // bytes; LongText set for a text kept on its own
};

class TextStore {
public:
    // Blocks of 64 KiB, 256 KiB, 1 MiB and then 2 MiB in huge pages; each starts at a multiple
    // of 2 MiB of the offsets.
    static constexpr int BlockBits = 21;
    static constexpr quint32 BlockSize = 1u << BlockBits;
    static constexpr quint32 LongText = 0x80000000u;
    static constexpr qsizetype LongFrom = 4096;  // bytes; longer texts stand alone

    QByteArrayView bytes(TextRef ref) const {
        if (ref.size == 0) return {};
        if (ref.size & LongText) return long_[ref.offset];
        return {blocks_[ref.offset >> BlockBits].get() + (ref.offset & (BlockSize - 1)),
                qsizetype(ref.size)};
    }

    TextRef add(QByteArrayView utf8) {
        if (utf8.isEmpty()) return {};
        if (utf8.size() >= LongFrom) return addLong(utf8.toByteArray());
        char* out = room(utf8.size());
        std::memcpy(out, utf8.data(), size_t(utf8.size()));
        return commit(utf8.size());
    }

    TextRef add(QStringView text) {
        if (text.isEmpty()) return {};
        const qsizetype most = encoder_.requiredSpace(text.size());
        if (most >= LongFrom) return addLong(text.toUtf8());
        char* out = room(most);
        return commit(encoder_.appendToBuffer(out, text) - out);
    }

    // Bytes held, long texts included.
    qsizetype used() const { return used_; }

    void clear() {
        blocks_.clear();
        long_.clear();
        pos_ = capacity_ = 0;
        used_ = 0;
    }

private:
    // Room for n bytes (n < LongFrom) at the end of the last block.
    char* room(qsizetype n) {
        if (pos_ + quint32(n) > capacity_) {
            // A grid past its first blocks is a big one: its blocks take huge pages.
            const size_t i = blocks_.size();
            capacity_ = i < 3 ? quint32(64 * 1024) << (2 * i) : BlockSize;
            blocks_.emplace_back(static_cast<char*>(allocateBlock(capacity_, i >= 3)));
            pos_ = 0;
        }
        return blocks_.back().get() + pos_;
    }
    TextRef commit(qsizetype n) {
        const TextRef ref{quint32((blocks_.size() - 1) << BlockBits) | pos_, quint32(n)};
        pos_ += quint32(n);
        used_ += n;
        return n == 0 ? TextRef{} : ref;
    }
    TextRef addLong(QByteArray bytes) {
        used_ += bytes.size();
        long_.push_back(std::move(bytes));
        return {quint32(long_.size() - 1), quint32(long_.back().size()) | LongText};
    }

    std::vector<std::unique_ptr<char[], FreeBlock>> blocks_;
    std::vector<QByteArray> long_;
    quint32 pos_ = 0;       // the first free byte of the last block
    quint32 capacity_ = 0;  // the last block's size
    qsizetype used_ = 0;
    QStringEncoder encoder_{QStringEncoder::Utf8, QStringEncoder::Flag::Stateless};
};

using Cells = std::vector<TextRef, BlockAllocator<TextRef>>;

// The grid's cells: row 0 is the header, rows 1.. are the view's rows 0.. .
class FlexGridModel : public QAbstractTableModel {
public:
    explicit FlexGridModel(QObject* parent) : QAbstractTableModel(parent) {
        cells_.resize(size_t(cols_));
        align_.fill(FlexGrid::flexAlignGeneral, cols_);
        headerAlign_.fill(Qt::AlignLeft | Qt::AlignVCenter, cols_);
    }

    // The views know of the data rows up to shown_; rows appended since are told to them
    // in one go when control returns to the event loop (or at flush()), so filling a grid
    // row by row costs the views one insertion, not one per row.
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : shown_;
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : cols_;
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid()) return {};
        if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
            return text(index.row() + 1, index.column());
        if (role == Qt::TextAlignmentRole) {
            const int code = align_[index.column()];
            if (code == FlexGrid::flexAlignGeneral)
                return QVariant::fromValue((vb::IsNumeric(text(index.row() + 1, index.column()))
                                                ? Qt::AlignRight
                                                : Qt::AlignLeft) |
                                           Qt::AlignVCenter);
            return QVariant::fromValue(alignmentOf(code));
        }
        return {};
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || section < 0 || section >= cols_) return {};
        if (role == Qt::DisplayRole) return text(0, section);
        if (role == Qt::TextAlignmentRole) return QVariant::fromValue(headerAlign_[section]);
        return {};
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override {
        return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
    }

    int rows() const { return rows_; }
    int cols() const { return cols_; }
    QString text(int row, int col) const { return QString::fromUtf8(bytes(row, col)); }

    template <class Text>
    void setText(int row, int col, Text text) {
        store(row, col, text);
        if (row == 0)
            emit headerDataChanged(Qt::Horizontal, col, col);
        else
            markDirty(row - 1, col, row - 1, col);
    }

    void setRows(int rows) {
        const int old = rows_;
        if (rows == old) return;
        if (rows > old) {
            cells_.resize(size_t(rows) * size_t(cols_));
            rows_ = rows;
            schedule();
        } else {
            flush();
            beginRemoveRows({}, rows - 1, old - 2);
            for (size_t i = size_t(rows) * size_t(cols_); i < cells_.size(); ++i)
                garbage_ += cells_[i].size & ~TextStore::LongText;
            cells_.resize(size_t(rows) * size_t(cols_));
            rows_ = rows;
            shown_ = rows - 1;
            endRemoveRows();
            if (cells_.capacity() > 2 * cells_.size() + 1024) cells_.shrink_to_fit();
            compactIfWasteful();
        }
    }

    void appendRow(const QStringList& cells) {
        setRowsQuietly(rows_ + 1);
        for (int c = 0; c < cols_ && c < cells.size(); ++c)
            store(rows_ - 1, c, QStringView(cells[c]));
        schedule();
    }

    void setCols(int cols) {
        const int old = cols_;
        if (cols == old) return;
        flush();
        if (cols > old)
            beginInsertColumns({}, old, cols - 1);
        else
            beginRemoveColumns({}, cols, old - 1);
        Cells cells(size_t(rows_) * size_t(cols));
        for (int r = 0; r < rows_; ++r)
            for (int c = 0; c < qMin(cols, old); ++c) cells[at(r, c, cols)] = cells_[at(r, c, old)];
        cells_ = std::move(cells);
        cols_ = cols;
        align_.resize(cols, FlexGrid::flexAlignGeneral);
        headerAlign_.resize(cols, Qt::AlignLeft | Qt::AlignVCenter);
        if (cols > old)
            endInsertColumns();
        else
            endRemoveColumns();
        if (cols < old) compact();  // the dropped columns' texts go
    }

    int alignment(int col) const { return align_[col]; }
    void setAlignment(int col, int code) {
        align_[col] = code;
        if (rows_ > 1) markDirty(0, col, rows_ - 2, col);
    }
    void setHeaderAlignment(int col, Qt::Alignment a) {
        headerAlign_[col] = a;
        emit headerDataChanged(Qt::Horizontal, col, col);
    }

    void clearTexts() {
        std::fill(cells_.begin(), cells_.end(), TextRef{});
        texts_.clear();
        garbage_ = 0;
        emit headerDataChanged(Qt::Horizontal, 0, cols_ - 1);
        if (rows_ > 1) markDirty(0, 0, rows_ - 2, cols_ - 1);
    }

    void sortRows(int col, int code) {
        flush();
        const int n = rows_ - 1;
        if (n < 2 || code < 1 || code > 8) return;
        const bool descending = code % 2 == 0;
        std::vector<int> order(n);
        for (int i = 0; i < n; ++i) order[i] = i + 1;

        QCollator collator(QLocale(QLocale::Persian, QLocale::Iran));
        collator.setCaseSensitivity(code >= 7 ? Qt::CaseSensitive : Qt::CaseInsensitive);
        auto sign = [descending](int c) { return descending ? -c : c; };
        auto cmpNumbers = [](double a, double b) { return a < b ? -1 : (a > b ? 1 : 0); };

        if (code == 3 || code == 4) {
            std::vector<double> key(n + 1);
            for (int r = 1; r <= n; ++r) key[r] = vb::Val(text(r, col));
            mergeSort(order, [&](int a, int b) { return sign(cmpNumbers(key[a], key[b])); });
        } else {
            std::vector<QCollatorSortKey> key;
            key.reserve(n + 1);
            key.push_back(collator.sortKey(QString()));
            std::vector<char> isNumber(n + 1, 0);
            std::vector<double> number(n + 1, 0.0);
            for (int r = 1; r <= n; ++r) {
                const QString t = text(r, col);
                key.push_back(collator.sortKey(t));
                if (code <= 2 && vb::IsNumeric(t)) {
                    isNumber[r] = 1;
                    number[r] = vb::Val(t);
                }
            }
            mergeSort(order, [&](int a, int b) {
                if (isNumber[a] && isNumber[b]) return sign(cmpNumbers(number[a], number[b]));
                return sign(key[a].compare(key[b]));
            });
        }

        emit layoutAboutToBeChanged();
        Cells sorted(cells_.size());
        std::copy_n(cells_.begin(), cols_, sorted.begin());
        for (int i = 0; i < n; ++i)
            std::copy_n(cells_.begin() + qsizetype(at(order[i], 0, cols_)), cols_,
                        sorted.begin() + qsizetype(at(i + 1, 0, cols_)));
        cells_ = std::move(sorted);
        emit layoutChanged();
    }

    // Changed cells are told to the view once, when control returns to the event loop, so
    // filling a large grid cell by cell costs no painting bookkeeping per cell.
    void markDirty(int top, int left, int bottom, int right) {
        if (top >= shown_) return;  // not yet shown: it comes with its insertion
        if (!dirty_) {
            dirty_ = true;
            dirtyTop_ = top, dirtyLeft_ = left, dirtyBottom_ = bottom, dirtyRight_ = right;
            schedule();
        } else {
            dirtyTop_ = qMin(dirtyTop_, top);
            dirtyLeft_ = qMin(dirtyLeft_, left);
            dirtyBottom_ = qMax(dirtyBottom_, bottom);
            dirtyRight_ = qMax(dirtyRight_, right);
        }
    }

    void schedule() {
        if (scheduled_) return;
        scheduled_ = true;
        QMetaObject::invokeMethod(
            this, [this] { flush(); }, Qt::QueuedConnection);
    }

    // Tells the views of every change so far.
    void flush() {
        scheduled_ = false;
        const int stored = rows_ - 1;
        if (stored > shown_) {
            beginInsertRows({}, shown_, stored - 1);
            shown_ = stored;
            endInsertRows();
        }
        if (!dirty_) return;
        dirty_ = false;
        const int last = shown_ - 1;
        if (last < 0) return;
        emit dataChanged(index(qMin(dirtyTop_, last), qMin(dirtyLeft_, cols_ - 1)),
                         index(qMin(dirtyBottom_, last), qMin(dirtyRight_, cols_ - 1)));
    }

private:
    static size_t at(int row, int col, int cols) {
        return size_t(row) * size_t(cols) + size_t(col);
    }
    QByteArrayView bytes(int row, int col) const {
        return texts_.bytes(cells_[at(row, col, cols_)]);
    }

    void setRowsQuietly(int rows) {
        cells_.resize(size_t(rows) * size_t(cols_));
        rows_ = rows;
    }

    // A cell's new text. A text equal to the cell's own, to the cell above or to the cell on
    // its left is not stored again but shared (a loan's columns repeat for each member).
    template <class Text>
    void store(int row, int col, Text text) {
        TextRef& cell = cells_[at(row, col, cols_)];
        TextRef ref;
        if (!text.isEmpty()) {
            if (equals(cell, text)) return;
            if (row > 1 && equals(cells_[at(row - 1, col, cols_)], text))
                ref = cells_[at(row - 1, col, cols_)];
            else if (col > 0 && equals(cells_[at(row, col - 1, cols_)], text))
                ref = cells_[at(row, col - 1, cols_)];
            else
                ref = texts_.add(text);
        }
        garbage_ += cell.size & ~TextStore::LongText;
        cell = ref;
        compactIfWasteful();
    }

    bool equals(TextRef ref, QByteArrayView utf8) const {
        return ref.size != 0 && texts_.bytes(ref) == utf8;
    }
    bool equals(TextRef ref, QStringView text) const {
        if (ref.size == 0) return false;
        const QByteArrayView b = texts_.bytes(ref);
        // A UTF-16 unit takes one to three bytes.
        if (b.size() < text.size() || b.size() > 3 * text.size()) return false;
        return QAnyStringView::equal(QUtf8StringView(b.data(), b.size()), text);
    }

    // Once most of the stored bytes belong to texts written over, the live ones are copied
    // into a fresh store (shared texts stay shared).
    void compactIfWasteful() {
        if (garbage_ > (qsizetype(1) << 20) && 2 * garbage_ > texts_.used()) compact();
    }
    void compact() {
        TextStore fresh;
        Cells moved(cells_.size());
        for (int r = 0; r < rows_; ++r) {
            for (int c = 0; c < cols_; ++c) {
                const size_t i = at(r, c, cols_);
                const TextRef old = cells_[i];
                if (old.size == 0) continue;
                if (r > 1 && sameRef(cells_[at(r - 1, c, cols_)], old))
                    moved[i] = moved[at(r - 1, c, cols_)];
                else if (c > 0 && sameRef(cells_[i - 1], old))
                    moved[i] = moved[i - 1];
                else
                    moved[i] = fresh.add(texts_.bytes(old));
            }
        }
        cells_ = std::move(moved);
        texts_ = std::move(fresh);
        garbage_ = 0;
    }
    static bool sameRef(TextRef a, TextRef b) { return a.offset == b.offset && a.size == b.size; }

    Cells cells_;  // rows_ x cols_, row after row
    TextStore texts_;
    qsizetype garbage_ = 0;  // bytes of texts written over (an estimate: shared ones count)
    int rows_ = 1;
    int cols_ = 2;
    QVector<int> align_;
    QVector<Qt::Alignment> headerAlign_;
    int shown_ = 0;
    bool scheduled_ = false;
    bool dirty_ = false;
    int dirtyTop_ = 0, dirtyLeft_ = 0, dirtyBottom_ = 0, dirtyRight_ = 0;
};

FlexGrid::FlexGrid(QWidget* parent) : QWidget(parent) {
    setLayoutDirection(Qt::RightToLeft);
    setFont(PersianFont());

    model_ = new FlexGridModel(this);
    view_ = new QTableView(this);
    view_->setObjectName(u"view"_s);
    view_->setModel(model_);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->setSelectionMode(QAbstractItemView::ContiguousSelection);
    view_->setSelectionBehavior(QAbstractItemView::SelectItems);
    view_->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    view_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    view_->setWordWrap(false);
    view_->setCornerButtonEnabled(false);
    view_->setTabKeyNavigation(false);

    QHeaderView* vertical = view_->verticalHeader();
    vertical->hide();
    vertical->setSectionResizeMode(QHeaderView::Fixed);
    vertical->setDefaultSectionSize(QFontMetrics(font()).height() + 8);
    vertical->setMinimumSectionSize(1);

    QHeaderView* header = view_->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setHighlightSections(false);
    header->setSectionsClickable(false);
    header->setStretchLastSection(false);
    header->setMinimumSectionSize(0);
    header->setDefaultSectionSize(64);
    header->setFont(PersianFont());

    view_->installEventFilter(this);
    view_->viewport()->installEventFilter(this);
    view_->viewport()->setMouseTracking(true);
    header->viewport()->installEventFilter(this);
    header->viewport()->setMouseTracking(true);

    colTwips_.fill(-1, model_->cols());

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    setFocusProxy(view_);
    setFocusPolicy(Qt::StrongFocus);

    connect(view_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &FlexGrid::onCurrentChanged);
}

FlexGrid::~FlexGrid() = default;

int FlexGrid::Rows() const { return model_->rows(); }

void FlexGrid::setRows(int rows) {
    rows = qMax(1, rows);
    const bool hadData = model_->rows() > 1;
    model_->setRows(rows);
    // A grid that gets its first data rows makes the first of them current.
    if (!hadData && rows > 1 && row_ == 0) row_ = rowSel_ = 1;
    clampCurrent();
}

int FlexGrid::Cols() const { return model_->cols(); }

void FlexGrid::setCols(int cols) {
    cols = qMax(1, cols);
    const int old = model_->cols();
    model_->setCols(cols);
    colTwips_.resize(cols, -1);
    for (int c = old; c < cols; ++c) view_->setColumnHidden(c, false);
    clampCurrent();
}

void FlexGrid::checkRow(int row) const {
    if (row < 0 || row >= model_->rows()) outOfRange(u"Row"_s, row);
}

void FlexGrid::checkCol(int col) const {
    if (col < 0 || col >= model_->cols()) outOfRange(u"Col"_s, col);
}

QString FlexGrid::TextMatrix(int row, int col) const {
    checkRow(row);
    checkCol(col);
    return model_->text(row, col);
}

void FlexGrid::setTextMatrix(int row, int col, const QString& text) {
    checkRow(row);
    checkCol(col);
    model_->setText(row, col, QStringView(text));
}

void FlexGrid::setTextMatrixUtf8(int row, int col, QByteArrayView utf8) {
    checkRow(row);
    checkCol(col);
    model_->setText(row, col, utf8);
}

void FlexGrid::setFormatString(const QString& format) {
    formatString_ = format;
    const QStringList columns = format.section(u';', 0, 0).split(u'|');
    setCols(int(columns.size()));
    const QFontMetrics fm(view_->horizontalHeader()->font());
    for (int c = 0; c < columns.size(); ++c) {
        QString text = columns[c];
        int code = -1;
        if (text.startsWith(u'<'))
            code = flexAlignLeftCenter;
        else if (text.startsWith(u'^'))
            code = flexAlignCenterCenter;
        else if (text.startsWith(u'>'))
            code = flexAlignRightCenter;
        if (code >= 0) {
            text.remove(0, 1);
            model_->setAlignment(c, code);
        }
        model_->setHeaderAlignment(
            c, code >= 0 ? alignmentOf(code) : (Qt::AlignLeft | Qt::AlignVCenter));
        model_->setText(0, c, QStringView(text));
        const int px = fm.horizontalAdvance(text) + 16;
        colTwips_[c] = twips(px);
        view_->setColumnHidden(c, false);
        view_->setColumnWidth(c, px);
    }
}

int FlexGrid::pixels(int tw) const {
    const int dpi = logicalDpiX() > 0 ? logicalDpiX() : 96;
    return qRound(tw * dpi / 1440.0);
}

int FlexGrid::twips(int px) const {
    const int dpi = logicalDpiX() > 0 ? logicalDpiX() : 96;
    return qRound(px * 1440.0 / dpi);
}

int FlexGrid::ColWidth(int col) const {
    checkCol(col);
    if (view_->isColumnHidden(col)) return 0;
    if (colTwips_[col] >= 0 && pixels(colTwips_[col]) == view_->columnWidth(col))
        return colTwips_[col];
    return twips(view_->columnWidth(col));
}

void FlexGrid::setColWidth(int col, int tw) {
    checkCol(col);
    colTwips_[col] = qMax(0, tw);
    if (tw <= 0) {
        view_->setColumnHidden(col, true);
    } else {
        view_->setColumnHidden(col, false);
        view_->setColumnWidth(col, pixels(tw));
    }
}

int FlexGrid::ColAlignment(int col) const {
    checkCol(col);
    return model_->alignment(col);
}

void FlexGrid::setColAlignment(int col, int code) {
    checkCol(col);
    if (code < 0 || code > flexAlignGeneral) outOfRange(u"ColAlignment"_s, code);
    model_->setAlignment(col, code);
}

void FlexGrid::setCurrent(int row, int col, bool keepSelection) {
    const bool changed = row != row_ || col != col_;
    row_ = row;
    col_ = col;
    if (!keepSelection) {
        rowSel_ = row;
        colSel_ = col;
    }
    showSelection();
    if (changed) emit RowColChange();
}

void FlexGrid::setRow(int row) {
    checkRow(row);
    setCurrent(row, col_, false);
}

void FlexGrid::setCol(int col) {
    checkCol(col);
    setCurrent(row_, col, false);
}

void FlexGrid::setRowSel(int row) {
    checkRow(row);
    rowSel_ = row;
    showSelection();
}

void FlexGrid::setColSel(int col) {
    checkCol(col);
    colSel_ = col;
    showSelection();
}

void FlexGrid::clampCurrent() {
    const int lastRow = model_->rows() - 1, lastCol = model_->cols() - 1;
    const int r = qMin(row_, lastRow), c = qMin(col_, lastCol);
    rowSel_ = qMin(rowSel_, lastRow);
    colSel_ = qMin(colSel_, lastCol);
    if (r != row_ || c != col_)
        setCurrent(r, c, true);
    else
        showSelection();
}

void FlexGrid::Refresh() { model_->flush(); }

void FlexGrid::showSelection() {
    model_->flush();
    QItemSelectionModel* sm = view_->selectionModel();
    syncing_ = true;
    const int top = qMax(1, qMin(row_, rowSel_)), bottom = qMax(row_, rowSel_);
    const int left = qMin(col_, colSel_), right = qMax(col_, colSel_);
    if (row_ >= 1)
        sm->setCurrentIndex(model_->index(row_ - 1, col_), QItemSelectionModel::NoUpdate);
    else
        sm->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
    if (bottom >= 1 && top <= bottom)
        sm->select(QItemSelection(model_->index(top - 1, left), model_->index(bottom - 1, right)),
                   QItemSelectionModel::ClearAndSelect);
    else
        sm->clearSelection();
    syncing_ = false;
}

void FlexGrid::onCurrentChanged() {
    if (syncing_) return;
    const QModelIndex current = view_->selectionModel()->currentIndex();
    if (!current.isValid()) return;
    const int row = current.row() + 1, col = current.column();
    const bool extend = dragging_ || (QGuiApplication::keyboardModifiers() & Qt::ShiftModifier);
    if (extend) {
        rowSel_ = row;
        colSel_ = col;
        return;
    }
    const bool changed = row != row_ || col != col_;
    row_ = rowSel_ = row;
    col_ = colSel_ = col;
    if (changed) emit RowColChange();
}

int FlexGrid::TopRow() const {
    if (model_->rows() <= 1) return 1;
    const int r = view_->rowAt(0);
    return r < 0 ? 1 : r + 1;
}

void FlexGrid::setTopRow(int row) {
    checkRow(row);
    if (row < 1) return;
    model_->flush();
    view_->verticalScrollBar()->setValue(row - 1);
}

void FlexGrid::AddItem(const QString& tabSeparated) {
    const bool hadData = model_->rows() > 1;
    model_->appendRow(tabSeparated.isEmpty() ? QStringList() : tabSeparated.split(u'\t'));
    if (!hadData && row_ == 0) {
        row_ = rowSel_ = 1;
        showSelection();
    }
}

void FlexGrid::Clear() { model_->clearTexts(); }

void FlexGrid::setRedraw(bool redraw) {
    redraw_ = redraw;
    if (redraw) model_->flush();
    view_->setUpdatesEnabled(redraw);
    view_->horizontalHeader()->setUpdatesEnabled(redraw);
}

void FlexGrid::Sort(int code) {
    if (code == flexSortNone) return;
    if (code < 0 || code > flexSortStringDescending) outOfRange(u"Sort"_s, code);
    checkCol(col_);
    model_->sortRows(col_, code);
}

void FlexGrid::SetFocus() { view_->setFocus(Qt::OtherFocusReason); }

QSize FlexGrid::sizeHint() const { return {480, 240}; }

void FlexGrid::setMouse(int row, int col) {
    mouseRow_ = row;
    mouseCol_ = col;
}

bool FlexGrid::eventFilter(QObject* watched, QEvent* event) {
    QHeaderView* header = view_->horizontalHeader();
    if (watched == header->viewport()) {
        // The header row: it reports MouseRow 0 and clicks, and never selects a column.
        switch (event->type()) {
            case QEvent::MouseMove:
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonRelease:
            case QEvent::MouseButtonDblClick: {
                auto* me = static_cast<QMouseEvent*>(event);
                setMouse(0, header->logicalIndexAt(me->position().toPoint()));
                if (event->type() == QEvent::MouseMove) return false;
                if (event->type() == QEvent::MouseButtonPress) {
                    headerPressed_ = true;
                    view_->setFocus(Qt::MouseFocusReason);
                } else if (event->type() == QEvent::MouseButtonDblClick) {
                    swallowClick_ = true;
                    emit DblClick();
                } else if (headerPressed_) {
                    headerPressed_ = false;
                    if (swallowClick_)
                        swallowClick_ = false;
                    else
                        emit Click();
                }
                return true;
            }
            default:
                return false;
        }
    }
    if (watched == view_->viewport()) {
        switch (event->type()) {
            case QEvent::MouseMove:
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonRelease:
            case QEvent::MouseButtonDblClick: {
                auto* me = static_cast<QMouseEvent*>(event);
                const QPoint p = me->position().toPoint();
                const int r = view_->rowAt(p.y()), c = view_->columnAt(p.x());
                setMouse(r < 0 ? -1 : r + 1, c);
                if (event->type() == QEvent::MouseMove) {
                    dragging_ = me->buttons() & Qt::LeftButton;
                } else if (event->type() == QEvent::MouseButtonPress) {
                    dragging_ = false;
                } else if (event->type() == QEvent::MouseButtonDblClick) {
                    swallowClick_ = true;
                    emit DblClick();
                } else {
                    // The view has moved the current cell on the press; the click follows.
                    dragging_ = false;
                    if (swallowClick_)
                        swallowClick_ = false;
                    else
                        emit Click();
                }
                return false;
            }
            default:
                return false;
        }
    }
    if (watched == view_ && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        int code = KeyCodeOf(*key);
        if (code != 0) {
            emit KeyDown(code, ShiftOf(*key));
            if (code == 0) return true;
        }
        int ascii = KeyAsciiOf(*key);
        if (ascii != 0) {
            emit KeyPress(ascii);
            if (ascii == 0) return true;
        }
        return false;
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace kav::controls
