#pragma once

// Printing and the PDFs of the module's session: every page says who printed it (the session's
// user, by the employee's name where the database knows it) and when. Printing goes through
// Qt's print preview, which the module shows through its seam (Module::SetPrintPreview), so
// tests print to a PDF file instead of a printer.
//
//   PrintDocument(module, this, TablePages(table));     // the print button
//   SaveDocumentPdf(module, path, TablePages(table));   // the PDF button

#include <QString>
#include <functional>

#include "data/SqlDialect.h"
#include "session/PagedDocument.h"

class QPrinter;
class QWidget;

namespace kav {

class Module;

// The employee's name, read when a document is printed.
QString PrinterNameQuery(const data::SqlDialect& dialect, qint32 employeeId);

// The session's user as a printed page names him: "علي رضايي (کاربر 3)", or "کاربر 3" when the
// session has no employee or the database does not know him.
QString SessionPrinterName(Module& module);

// The foot's line for the session's user, now.
QString PrintedNow(Module& module);

// Writes the document as a PDF (SavePdf), its pages naming the session's user and now.
void SaveDocumentPdf(Module& module, const QString& path, const PagedDocument& document);

// Prints with a preview: a printer set to A4 in the document's orientation, the pages painted
// by the same routine as the PDF, the preview through the module's seam.
void PrintDocument(Module& module, QWidget* parent, const PagedDocument& document);

// Qt's print preview dialog (right to left) on the printer, shown through Module::ShowModal;
// `paint` paints the pages whenever the preview or the printing asks. The module's default
// preview.
void ShowQtPrintPreview(const Module& module, QWidget* parent, QPrinter& printer,
                        const std::function<void(QPrinter&)>& paint);

}  // namespace kav
