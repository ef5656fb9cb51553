#include "session/Printing.h"

#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QSettings>

#include "base/Errors.h"
#include "session/Handler.h"
#include "session/Module.h"
#include "session/TextProcs.h"
#include "session/WindowMemory.h"

using namespace Qt::StringLiterals;

namespace kav {

QString PrinterNameQuery(const data::SqlDialect& dialect, qint32 employeeId) {
    const QString plus = dialect.concatOperator();
    return u"select e.FirstName "_s + plus + u"' '"_s + plus +
           u"e.SureName as 'EmployeeName' from tblEmployee e Where e.ID="_s +
           QString::number(employeeId);
}

QString SessionPrinterName(Module& module) {
    const Session& s = module.session;
    const QString user = u"کاربر %1"_s.arg(s.SessionUserID);
    if (s.SessionEmployeeID <= 0) return user;
    QString name;
    try {
        Recordset rs = module.DtEn().NewRecordset();
        rs.Open(PrinterNameQuery(module.DtEn().Dialect(), s.SessionEmployeeID));
        if (!rs.EOF_()) name = FieldText(rs.Fields(u"EmployeeName"_s)).simplified();
        rs.Close();
    } catch (const KavError&) {
        // A database that cannot say leaves the user's number alone on the page.
    }
    return name.isEmpty() ? user : name + u" ("_s + user + u")"_s;
}

QString PrintedNow(Module& module) {
    return PrintedText(SessionPrinterName(module), QDateTime::currentDateTime());
}

void SaveDocumentPdf(Module& module, const QString& path, const PagedDocument& document) {
    SavePdf(path, document, PrintedNow(module));
}

void PrintDocument(Module& module, QWidget* parent, const PagedDocument& document) {
    const QString printed = PrintedNow(module);
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(document.title);
    printer.setCreator(u"KAVHRLoan"_s);
    SetDocumentLayout(printer, document);
    module.PrintPreview(parent, printer,
                        [&](QPrinter& target) { PaintPages(target, document, printed); });
}

void ShowQtPrintPreview(const Module& module, QWidget* parent, QPrinter& printer,
                        const std::function<void(QPrinter&)>& paint) {
    QPrintPreviewDialog dialog(&printer, parent);
    dialog.setObjectName(u"dlgPrintPreview"_s);
    dialog.setLayoutDirection(Qt::RightToLeft);
    dialog.resize(1000, 660);
    const bool remember = module.RemembersWindows();
    if (remember) {
        QSettings settings;
        window_memory::Restore(dialog, settings);
    }
    // The preview asks for the pages from inside the event loop: nothing raised may leave it.
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&](QPrinter* target) { RunHandler(module, [&] { paint(*target); }); });
    module.ShowModal(dialog);
    if (remember) {
        QSettings settings;
        window_memory::Remember(dialog, settings);
    }
}

}  // namespace kav
