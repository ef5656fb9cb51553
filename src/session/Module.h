#pragma once

// The module object: owns the session, the data environment, the message-component factory
// and the single shared instance of each window. Windows reach each other and the session
// through it; nothing in the module is global.

#include <QObject>
#include <QPointer>
#include <functional>
#include <map>
#include <memory>
#include <typeindex>

#include "session/DataEnvironment.h"
#include "session/FileDialog.h"
#include "session/Messages.h"
#include "session/Session.h"

class QDialog;
class QPrinter;
class QWidget;

namespace kav {

class Module {
public:
    // Shows a window modally and returns its result. Tests replace it so nothing blocks.
    using ModalRunner = std::function<int(QDialog&)>;
    // Shows the print preview of the pages `paint` paints on a printer that is set up, and
    // prints them when the clerk asks. Tests replace it to print to a PDF file.
    using PrintPreviewRunner = std::function<void(QWidget* parent, QPrinter& printer,
                                                  const std::function<void(QPrinter&)>& paint)>;

    Module();
    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    Session session;

    // The data environment, created on first reference.
    DataEnvironment& DtEn();
    // Releases the data environment and points a fresh one at SessionConnectionString; the
    // connection opens at the first command that needs it.
    void OpenSessionConnection();

    // Messages through the current factory.
    void SetMessageFactory(MessageFactory factory) { messages_ = std::move(factory); }
    void ShowMessage(const QVariant& title, const QString& text) const;
    qint16 AskQuestion(const QVariant& title, const QString& text) const;

    // The role check: spVarekHasPermission for SessionUserID; granted only for exactly 1.
    bool HasPermission(qint32 permission);
    // Shows the refusal "you lack the required role" titled "خطا".
    void ShowRoleRefusal() const;
    static QString RoleRefusalText();

    // The system working date: the Value of row 3450 of tblVarekSystemParameters, else
    // today's Jalali date, as "yyyy/mm/dd".
    QString SystemWorkingDate();

    // Called while a statement waits for another client's lock on the embedded database (see
    // Connection::SetLockWaitHook); kept for the data environments made later. Empty: none.
    void SetLockWaitHook(std::function<void()> hook);

    // Words the loan window adds to its caption after the mode's title: the application says
    // so when it runs on the demo database. Empty for a host.
    void SetCaptionNote(const QString& note) { captionNote_ = note; }
    const QString& CaptionNote() const { return captionNote_; }

    // The question every export asks for its file (session/FileDialog.h); tests answer it.
    void SetSaveFileQuestion(SaveFileQuestion question) { saveFile_ = std::move(question); }
    const SaveFileQuestion& saveFileQuestion() const { return saveFile_; }

    // Whether the windows keep their sizes and column widths in the application's settings
    // (session/WindowMemory.h). On unless switched off (the screenshots, the tests).
    void SetRemembersWindows(bool on) { remembersWindows_ = on; }
    bool RemembersWindows() const { return remembersWindows_; }

    void SetModalRunner(ModalRunner runner) { modal_ = std::move(runner); }
    int ShowModal(QDialog& dialog) const;

    // Qt's print preview shown through ShowModal, unless replaced (session/Printing.h).
    void SetPrintPreview(PrintPreviewRunner runner) { preview_ = std::move(runner); }
    void PrintPreview(QWidget* parent, QPrinter& printer,
                      const std::function<void(QPrinter&)>& paint) const;

    // The single shared instance of a window, created on first use with the module.
    template <class W>
    W& Window() {
        auto& slot = windows_[std::type_index(typeid(W))];
        if (!slot) slot.reset(new W(*this));
        return static_cast<W&>(*slot);
    }
    template <class W>
    bool HasWindow() const {
        auto it = windows_.find(std::type_index(typeid(W)));
        return it != windows_.end() && it->second;
    }
    // Unloads a window: the next use creates it anew.
    template <class W>
    void UnloadWindow() {
        windows_.erase(std::type_index(typeid(W)));
    }

    // Windows that call each other do so through small interfaces (session/WindowPorts.h)
    // that the called window implements. Whoever assembles the module says which window
    // serves a port; a window asks for the port and never names the other window's class.
    template <class Port>
    void ProvidePort(std::function<Port&(Module&)> provider) {
        ports_[std::type_index(typeid(Port))] = [provider](Module& m) -> void* {
            return &provider(m);
        };
    }
    // The window serving the port; KavError (Usage) when no window serves it.
    template <class Port>
    Port& port() {
        const auto it = ports_.find(std::type_index(typeid(Port)));
        if (it == ports_.end()) missingPort(typeid(Port).name());
        return *static_cast<Port*>(it->second(*this));
    }

private:
    [[noreturn]] static void missingPort(const char* port);

    std::unique_ptr<DataEnvironment> dtEn_;
    MessageFactory messages_;
    ModalRunner modal_;
    PrintPreviewRunner preview_;
    SaveFileQuestion saveFile_ = AskWithFileDialog;
    QString captionNote_;
    bool remembersWindows_ = true;
    std::function<void()> lockWaitHook_;
    std::map<std::type_index, std::unique_ptr<QObject>> windows_;
    std::map<std::type_index, std::function<void*(Module&)>> ports_;
};

}  // namespace kav
