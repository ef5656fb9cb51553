#include "loan_editor/LoanModes.h"

#include "loan_editor/LoanEditorTexts.h"

using namespace Qt::StringLiterals;

namespace kav::loan_modes {

namespace {
using enum modes::State;
using modes::Kind;
}  // namespace

const modes::Table& EditorTable() {
    static const modes::Table table = {
        {{u"cmdNew"_s, u"mnuNew"_s}, Kind::Enable, {On, Off, Off, On}},
        {{u"cmdEdit"_s, u"mnuEdit"_s}, Kind::Enable, {OnIfTemporary, Off, Off, Off}},
        {{u"cmdDelete"_s, u"mnuDelete"_s}, Kind::Enable, {OnIfTemporary, Off, Off, Off}},
        {{u"cmdRegSave"_s, u"cmdFinSave"_s, u"mnuRegSave"_s, u"mnuFinSave"_s},
         Kind::Enable,
         {Off, On, On, Off}},
        {{u"cmdCancel"_s, u"mnuCancel"_s}, Kind::Enable, {Off, On, On, Off}},
        {{u"cmdExit"_s, u"mnuExit"_s}, Kind::Enable, {On, Off, Off, On}},
        {{u"cmdSearch"_s}, Kind::Enable, {On, Off, Off, On}},
        {{u"mnusearch"_s}, Kind::Enable, {On, On, Off, On}},
        {{u"cmdBacktoTemp"_s}, Kind::Enable, {OnIfFinal, OnIfFinal, Off, Off}},
        {{u"cmdBalance"_s}, Kind::Enable, {On, Off, Off, Off}},
        {{u"cmdAddEmp"_s, u"cmdAddOrdinanceEmployees"_s}, Kind::Enable, {Off, On, Off, Off}},
        {{u"cmdDeleteEmp"_s}, Kind::Enable, {Off, Off, Off, Off}},
        {{u"cmdDefineAccount"_s}, Kind::Enable, {On, Off, Off, Off}},
        {{u"cmbLoanType"_s}, Kind::Enable, {Off, On, On, Off}},
        {{u"datLoanPayDate"_s, u"datBeginDate"_s, u"datEndDate"_s},
         Kind::Enable,
         {Off, On, On, Off}},
        // In view mode the amount is locked and the original amount left as it was.
        {{u"txtLoanValue"_s, u"TxtPerMonth"_s}, Kind::Lock, {Locked, Open, Open, Locked}},
        {{u"txtOriginalValue"_s}, Kind::Lock, {Unchanged, Open, Open, Locked}},
        {{u"txtNotes"_s, u"txtPayBackNumber"_s}, Kind::Lock, {Locked, Open, Open, Locked}},
        {{u"UseRemainedValueInFirstMonthF"_s, u"UseRemainedValueInFirstMonthL"_s,
          u"UseRemainedValueInSeparatedLastMonth"_s},
         Kind::Enable,
         {Off, On, On, Off}},
        {{u"chkISValid"_s}, Kind::Enable, {Off, On, Unchanged, Unchanged}},
    };
    return table;
}

QString EditorTitle(qint32 mode) {
    switch (mode) {
        case 0:
            return editor_texts::TitleView;
        case 1:
            return editor_texts::TitleEdit;
        case 2:
            return editor_texts::TitleNew;
        case 3:
            return editor_texts::TitleEmpty;
        default:
            return QString();
    }
}

}  // namespace kav::loan_modes
