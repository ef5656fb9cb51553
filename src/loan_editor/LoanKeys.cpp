#include "loan_editor/LoanKeys.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

#include "controls/VarekCurrency.h"
#include "loan_editor/FormHRLoan.h"
#include "loan_editor/sheet/SheetMenu.h"
#include "session/CommandKeys.h"

using namespace Qt::StringLiterals;

namespace kav::loan_keys {

void AttachToEditor(FormHRLoan& e) {
    using keys::Command;
    keys::Bind(e, {{Command::New, e.cmdNew},
                   {Command::Edit, e.cmdEdit},
                   {Command::Save, e.cmdRegSave},
                   {Command::FinalSave, e.cmdFinSave},
                   {Command::BackToTemporary, e.cmdBacktoTemp},
                   {Command::Delete, e.cmdDelete},
                   {Command::Search, e.cmdSearch},
                   {Command::Tools, e.PushButton1},
                   {Command::Balance, e.cmdBalance},
                   {Command::AddMember, e.cmdAddEmp},
                   {Command::AddOrdinanceMembers, e.cmdAddOrdinanceEmployees},
                   {Command::RemoveMember, e.cmdDeleteEmp}});

    // The menu's entries of those buttons show their keys; the loan sheet's entries answer
    // their own, once their state is brought up to date as opening the menu does.
    const std::pair<QAction*, Command> shown[] = {
        {e.mnuNew, Command::New},           {e.mnuEdit, Command::Edit},
        {e.mnuDelete, Command::Delete},     {e.mnuRegSave, Command::Save},
        {e.mnuFinSave, Command::FinalSave}, {e.mnusearch, Command::Search}};
    for (const auto& [entry, command] : shown) keys::ShowKey(*entry, command);
    const auto refresh = [&e] { e.Guard([&e] { sheet::UpdateMenu(e); }); };
    const auto entry = [&e](const QString& name) {
        return e.mnuTool->findChild<QAction*>(name, Qt::FindDirectChildrenOnly);
    };
    keys::Bind(e, Command::Print, *entry(u"mnuPrintSheet"_s), refresh);
    keys::Bind(e, Command::ExportPdf, *entry(u"mnuSaveSheetPdf"_s), refresh);

    // The loan's ID and number, the type's ceiling and the remainder are only shown: a click
    // still selects their text, Tab passes them by.
    for (QWidget* box :
         std::initializer_list<QWidget*>{e.txtID, e.txtCode, e.txtMaxLoanValue, e.txtRem}) {
        box->setFocusPolicy(Qt::ClickFocus);
        if (QWidget* inner = box->focusProxy()) inner->setFocusPolicy(Qt::ClickFocus);
    }
}

}  // namespace kav::loan_keys
