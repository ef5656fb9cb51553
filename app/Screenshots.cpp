#include "Screenshots.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTabWidget>
#include <QTemporaryDir>
#include <functional>

#include "adjustments/FormHRException.h"
#include "adjustments/FormList.h"
#include "adjustments/ScheduleExport.h"
#include "base/Errors.h"
#include "controls/ControlGallery.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"
#include "data/DemoData.h"
#include "deductions/FormDeductions.h"
#include "host/kavHRLoan1.h"
#include "loan_editor/FinalSaveChecks.h"
#include "loan_editor/FormHREmployee.h"
#include "loan_editor/FormHRLoan.h"
#include "loan_editor/history/FormDeletedLoans.h"
#include "loan_editor/history/FormLoanHistory.h"
#include "loan_editor/history/HistoryMenu.h"
#include "loan_editor/sheet/LoanSheet.h"
#include "loan_editor/sheet/SheetDocument.h"
#include "loan_editor/sheet/SheetMenu.h"
#include "search/FormSearch.h"
#include "session/FileDialog.h"
#include "session/MessageDialogs.h"
#include "session/Module.h"
#include "session/Printing.h"
#include "session/TableDocument.h"
#include "session/WindowMemory.h"

using namespace Qt::StringLiterals;

namespace {

// A message component that shows nothing, so the screenshots never wait for a click, and
// answers every question yes; `seen` is told of each message it was asked to show.
class SilentComponent : public kav::MessageComponent {
public:
    using Seen = std::function<void(const QString& title, const QString& text, qint16 type)>;
    explicit SilentComponent(Seen seen = {}) : seen_(std::move(seen)) {}
    void SetFormTitle(const QVariant& title) override { title_ = title.toString(); }
    void SetFormMessage(const QString& text) override { text_ = text; }
    void SetFormType(qint16 type) override { type_ = type; }
    void ClearShow() override {
        if (seen_) seen_(title_, text_, type_);
    }
    QVariant Resualt() const override { return 1; }

private:
    Seen seen_;
    QString title_, text_;
    qint16 type_ = 0;
};

QStringList unwritten;
// Windows shown larger than a laptop's screen takes at their first size.
QStringList oversized;

int save(QWidget& w, const QString& dir, const QString& name, int settleMs = 0) {
    const QSize largest = kav::window_memory::LargestFirstSize;
    if (w.width() > largest.width() || w.height() > largest.height())
        oversized << u"%1 (%2x%3)"_s.arg(name).arg(w.width()).arg(w.height());
    w.show();
    QApplication::processEvents();
    // What fills itself in the background (a folder's files) gets a moment.
    for (QElapsedTimer t; !t.isValid() || t.elapsed() < settleMs;) {
        if (!t.isValid()) t.start();
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    const bool ok = w.grab().save(QDir(dir).filePath(name + u".png"_s));
    w.hide();
    if (!ok) unwritten << name + u".png"_s;
    return ok ? 1 : 0;
}

// Pages of a document as PNG files, each page (from 0; -1 the last) under its name.
int savePages(const kav::PagedDocument& doc, const QString& printed, const QString& dir,
              std::initializer_list<std::pair<int, QString>> pages) {
    int written = 0;
    for (const auto& [page, name] : pages) {
        QImage image;
        if (page >= 0) {
            image = kav::PageImage(doc, printed, page);
        } else {
            for (int n = 0;; ++n) {
                QImage next = kav::PageImage(doc, printed, n);
                if (next.isNull()) break;
                image = next;
            }
        }
        if (!image.isNull() && image.save(QDir(dir).filePath(name + u".png"_s)))
            ++written;
        else
            unwritten << name + u".png"_s;
    }
    return written;
}

// The id of the first loan the demo database holds as temporary (or final).
qint16 demoLoan(const QString& file, bool final) {
    qint16 id = 0;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"screenshots"_s);
        db.setDatabaseName(file);
        if (db.open()) {
            QSqlQuery q(db);
            q.exec(final ? u"select min(ID) from tblHRLoan where Code is not null"_s
                         : u"select min(ID) from tblHRLoan where Code is null"_s);
            if (q.next()) id = qint16(q.value(0).toInt());
        }
    }
    QSqlDatabase::removeDatabase(u"screenshots"_s);
    return id;
}

// Active employees who are not members of the loan, the first `count` of them.
QList<qint32> freeEmployees(const QString& file, qint32 loan, int count) {
    QList<qint32> ids;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"screenshots"_s);
        db.setDatabaseName(file);
        if (db.open()) {
            QSqlQuery q(db);
            q.exec(
                u"select ID from tblEmployee where WorkStatusID <> 3 and ID not in (select "
                "EmployeeID from tblHRLoanDetail where LoanID=%1) order by ID limit %2"_s.arg(loan)
                    .arg(count));
            while (q.next()) ids << q.value(0).toInt();
        }
    }
    QSqlDatabase::removeDatabase(u"screenshots"_s);
    return ids;
}

// One run of the screenshots: the demo database in a folder of its own, the module on it with
// a message component that shows nothing, and the loan window the others open from.
class Shots {
public:
    explicit Shots(const QString& dir);
    void editorModes();
    void toolsMenu();
    void pickerAndMembers();
    void adjustments();
    void search();
    void deductions();
    void finalSaveQuestion();
    void history();
    void loanSheet();
    void dialogs();
    int written = 0;

private:
    void photograph(const QString& name) { written += save(editor, dir, name); }

    const QString dir;
    QTemporaryDir temp;
    const QString file = temp.filePath(u"demo.db"_s);
    std::shared_ptr<kav::Module> module;
    std::unique_ptr<kav::kavHRLoan1> host;
    kav::FormHRLoan& editor;
    qint16 temporary = 0;  // the demo's first temporary loan
    QList<qint32> people;  // employees who are no members of it
};

// The demo database and the module on it; the loan window is shown empty, photographed
// instead of waiting for the user.
kav::FormHRLoan& openEditor(kav::kavHRLoan1& host, kav::Module& module, const QString& file,
                            const QString& dir, int& written) {
    host.setOLEConnectionstring(kav::data::EmbeddedConnectionString(file));
    host.setUserID(kav::data::DemoUserWithPermissions);
    // The clerk is one of the demo's employees, so a printed page names him.
    host.setEmployeeID(1);
    module.SetModalRunner([&](QDialog& d) {
        written += save(d, dir, u"editor-empty"_s);
        return 0;
    });
    host.ClearShow();
    return module.Window<kav::FormHRLoan>();
}

std::shared_ptr<kav::Module> silentModule() {
    auto module = std::make_shared<kav::Module>();
    module->SetMessageFactory([] { return std::make_unique<SilentComponent>(); });
    // Every window at its first size, whatever the user's own runs remembered.
    module->SetRemembersWindows(false);
    return module;
}

Shots::Shots(const QString& dir_)
    : dir(dir_),
      module((kav::data::CreateDemoDatabase(file), silentModule())),
      host(std::make_unique<kav::kavHRLoan1>(module)),
      editor(openEditor(*host, *module, file, dir, written)) {}

void Shots::editorModes() {
    // Each mode is reached the way a clerk reaches it, so each shows its own status line:
    // Cancel (answered yes) ends the new and the edit mode and clears it.
    editor.cmdNew_Click();
    photograph(u"editor-new"_s);
    editor.cmdCancel_Click();
    editor.ViewPRSLoansInfo(demoLoan(file, false));
    photograph(u"editor-view-temporary"_s);
    editor.cmdEdit_Click();
    photograph(u"editor-edit"_s);
    editor.cmdCancel_Click();
    editor.ViewPRSLoansInfo(demoLoan(file, true));
    photograph(u"editor-view-final"_s);
}

void Shots::toolsMenu() {
    // Its Tools menu, with the keys beside the entries.
    editor.show();
    editor.mnuTool->popup(editor.PushButton1->mapToGlobal(QPoint(0, editor.PushButton1->height())));
    QApplication::processEvents();
    if (editor.mnuTool->grab().save(QDir(dir).filePath(u"editor-tools-menu.png"_s)))
        ++written;
    else
        unwritten << u"editor-tools-menu.png"_s;
    editor.mnuTool->hide();
    editor.hide();
}

void Shots::pickerAndMembers() {
    // The picker with a borrower and two guarantors chosen, then the editor with the member
    // and the employees with an ordinance in the loan's period added.
    temporary = demoLoan(file, false);
    people = freeEmployees(file, temporary, 3);
    editor.ViewPRSLoansInfo(temporary);
    editor.cmdEdit_Click();
    module->SetModalRunner([&](QDialog& d) {
        auto* picker = qobject_cast<kav::FormHREmployee*>(&d);
        if (!picker || people.size() < 3) return 0;
        picker->sltEmployeeID->setValue(people[0]);
        picker->sltSupportEmployeeID1->setValue(people[1]);
        picker->sltSupportEmployeeID2->setValue(people[2]);
        written += save(*picker, dir, u"picker"_s);
        picker->cmdOK->click();
        return 0;
    });
    editor.cmdAddEmp_Click();
    editor.cmdAddOrdinanceEmployees_Click();
    photograph(u"members-edit"_s);
}

void Shots::adjustments() {
    // The adjustment window on the demo's housing loan (2) and its member, in each mode; its
    // list with every adjustment; the member's schedule on screen and as the PDF's first page.
    editor.ViewPRSLoansInfo(2);
    module->SetModalRunner([&](QDialog& d) {
        if (auto* list = qobject_cast<kav::FormList*>(&d)) {
            list->cmdSearch_Click();
            written += save(*list, dir, u"adjustment-list"_s);
            return 0;
        }
        auto* w = qobject_cast<kav::FormHRException*>(&d);
        if (!w) return 0;
        written += save(*w, dir, u"adjustment-empty"_s);
        // The PDF's first page and its last, the chart.
        written += savePages(w->ScheduleDocument(), kav::PrintedNow(*module), dir,
                             {{0, u"schedule-pdf"_s}, {-1, u"schedule-pdf-chart"_s}});
        w->cmdList_Click();
        w->ShowFormToEdit(1);
        written += save(*w, dir, u"adjustment-view"_s);
        w->cmdEdit_Click();
        written += save(*w, dir, u"adjustment-edit"_s);
        w->cmdNew_Click();
        w->gdcBalancePF->setFarsidate(u"1403/08/01"_s);
        w->gdcBalancePT->setFarsidate(u"1403/10/30"_s);
        w->TxtPerMonth->setText(u"18/000/000"_s);
        written += save(*w, dir, u"adjustment-new"_s);
        return 0;
    });
    editor.cmdBalance_Click();
}

void Shots::search() {
    // The search window from the editor's search button: empty, with every loan, and with a
    // few criteria, sorted by the amount.
    module->SetModalRunner([&](QDialog& d) {
        auto* s = qobject_cast<kav::FormSearch*>(&d);
        if (!s) return 0;
        written += save(*s, dir, u"search-empty"_s);
        s->cmdSearch_Click();
        written += save(*s, dir, u"search-results"_s);
        s->chkTempSave->setChecked(false);
        s->datPaymentDatef->setFarsidate(u"1402/01/01"_s);
        s->txtLoanValueF->setText(u"50000000"_s);
        s->cmdSearch_Click();
        s->DoSort(6);
        s->DoSort(6);
        written += save(*s, dir, u"search-criteria"_s);
        return 0;
    });
    editor.cmdSearch_Click();
}

void Shots::deductions() {
    // The monthly register of the working month from the Tools menu: its rows, its totals per
    // employee, and its PDF's first page with every total.
    module->SetModalRunner([&](QDialog& d) {
        auto* r = qobject_cast<kav::FormDeductions*>(&d);
        if (!r) return 0;
        r->cmdSearch_Click();
        written += save(*r, dir, u"deductions"_s);
        r->tabRegister->setCurrentIndex(1);
        written += save(*r, dir, u"deductions-employees"_s);
        r->tabRegister->setCurrentIndex(0);
        written += savePages(kav::TablePages(kav::deductions::Document(
                                 r->RegisterShown(), r->TotalsShown(), r->Facts())),
                             kav::PrintedNow(*module), dir, {{0, u"deductions-pdf"_s}});
        return 0;
    });
    if (auto* entry = editor.findChild<QAction*>(u"mnuDeductions"_s)) entry->trigger();
}

void Shots::finalSaveQuestion() {
    // The question before a final save, as the message dialog shows it: the temporary loan with
    // its amount changed after the count was worked out, its settlement date moved and a member
    // who guarantees himself. Answered yes, the loan is saved and the status bar gives its number.
    editor.ViewPRSLoansInfo(temporary);
    editor.cmdEdit_Click();
    module->SetModalRunner([&](QDialog& d) {
        auto* picker = qobject_cast<kav::FormHREmployee*>(&d);
        if (!picker || people.size() < 2) return 0;
        picker->sltEmployeeID->setValue(people[1]);
        picker->sltSupportEmployeeID1->setValue(people[1]);
        picker->cmdOK->click();
        return 0;
    });
    editor.cmdAddEmp_Click();
    editor.txtLoanValue->setText(u"300000000"_s);
    editor.datEndDate->setEnglishdate(editor.datEndDate->englishdate().addMonths(2));
    editor.TxtPerMonth_GotFocus();
    module->SetMessageFactory([&] {
        return std::make_unique<SilentComponent>(
            [&](const QString& title, const QString& text, qint16 type) {
                if (title != kav::final_checks::QuestionTitle()) return;
                auto dialog = kav::BuildMessageDialog(title, text, type);
                written += save(*dialog, dir, u"final-save-question"_s);
            });
    });
    editor.cmdFinSave_Click();
    photograph(u"editor-saved-final"_s);
    module->SetMessageFactory([] { return std::make_unique<SilentComponent>(); });
}

void Shots::history() {
    // The history of the demo's loan 9 (saved three times as temporary, then made final) and
    // the deleted loans, from the Tools menu.
    editor.ViewPRSLoansInfo(9);
    module->SetModalRunner([&](QDialog& d) {
        if (auto* h = qobject_cast<kav::FormLoanHistory*>(&d))
            written += save(*h, dir, u"history"_s);
        else if (auto* deleted = qobject_cast<kav::FormDeletedLoans*>(&d))
            written += save(*deleted, dir, u"deleted-loans"_s);
        return 0;
    });
    kav::history::ShowHistory(editor);
    kav::history::ShowDeletedLoans(editor);
}

void Shots::loanSheet() {
    // The loan sheet of the demo's first final loan (its first page and its first member's page
    // to sign) and of a temporary loan; the final one's print preview from the Tools menu; the
    // save dialog as it proposes the sheet's file, in Persian, with a file beside it.
    const QString printed = kav::PrintedNow(*module);
    const qint32 finalLoan = demoLoan(file, true);
    const auto sheet = [&](qint32 loan) {
        return kav::sheet::SheetDocument(kav::sheet::ContentOf(
            kav::sheet::ReadLoan(module->DtEn().cnt(), loan), module->session.SessionTitle));
    };
    written += savePages(sheet(finalLoan), printed, dir,
                         {{0, u"loan-sheet"_s}, {1, u"loan-sheet-borrower"_s}});
    written +=
        savePages(sheet(demoLoan(file, false)), printed, dir, {{0, u"loan-sheet-temporary"_s}});
    editor.ViewPRSLoansInfo(finalLoan);
    module->SetModalRunner([&](QDialog& d) {
        if (d.objectName() != u"dlgPrintPreview"_s) return 0;
        written += save(d, dir, u"print-preview"_s, 300);
        // The page at the window's width, to read it.
        if (auto* pages = d.findChild<QPrintPreviewWidget*>()) pages->fitToWidth();
        written += save(d, dir, u"print-preview-width"_s, 300);
        return 0;
    });
    kav::sheet::PrintSheet(editor);
    const QString sheetName = kav::ProposedFileName(
        kav::sheet::FileWords(kav::sheet::ReadLoan(module->DtEn().cnt(), finalLoan)));
    kav::SavePdf(temp.filePath(sheetName + u".pdf"_s), sheet(finalLoan), printed);
    {
        auto dialog = kav::BuildSaveDialog(
            nullptr, u"ذخيره برگه وام"_s, temp.filePath(sheetName + u"-2.pdf"_s), u"PDF (*.pdf)"_s);
        dialog->setViewMode(QFileDialog::Detail);
        dialog->resize(900, 520);
        written += save(*dialog, dir, u"file-dialog"_s, 800);
    }
}

void Shots::dialogs() {
    auto message = kav::BuildMessageDialog(u"خطا"_s, kav::Module::RoleRefusalText(), 0);
    written += save(*message, dir, u"message"_s);
    auto question = kav::BuildMessageDialog(
        u"هشدار"_s, u"اطلاعات ممکن است تغيير کرده باشد، آيا قصد خروج بدون ثبت تغييرات داريد؟"_s, 1);
    written += save(*question, dir, u"question"_s);

    written += save(*host, dir, u"test-bench"_s);
}

}  // namespace

int RenderScreenshots(const QString& dir) {
    QDir().mkpath(dir);
    unwritten.clear();
    oversized.clear();
    const int galleryUnwritten = kav::controls::RenderControlGallery(dir);
    {
        Shots shots(dir);
        shots.editorModes();
        shots.toolsMenu();
        shots.pickerAndMembers();
        shots.adjustments();
        shots.search();
        shots.deductions();
        shots.finalSaveQuestion();
        shots.history();
        shots.loanSheet();
        shots.dialogs();
    }
    if (galleryUnwritten > 0 || !unwritten.isEmpty())
        throw kav::KavError(
            kav::KavError::Kind::Usage,
            u"%1 تصوير در «%2» نوشته نشد. %3"_s.arg(
                QString::number(galleryUnwritten + unwritten.size()), dir, unwritten.join(u" "_s)));
    if (!oversized.isEmpty()) {
        const QSize largest = kav::window_memory::LargestFirstSize;
        throw kav::KavError(kav::KavError::Kind::Usage,
                            u"اين پنجره ها از %1x%2 بزرگترند: %3"_s.arg(largest.width())
                                .arg(largest.height())
                                .arg(oversized.join(u"، "_s)));
    }
    return int(QDir(dir).entryList({u"*.png"_s}, QDir::Files).size());
}
