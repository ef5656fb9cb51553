// Text that looks like SQL typed or pasted into the loan editor's boxes: the notes are stored
// as typed and the statements that run are exactly the save's (watched on the connection
// itself); the count and the amounts take Persian and Arabic-Indic digits as the digits they
// are and refuse anything else with a clear message, writing nothing.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlDriver>
#include <QTest>

#include "HostileInput.h"
#include "controls/FlexGrid.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "loan_editor/EditorFixture.h"
#include "support/QtPrinters.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

class HostileEditorTest : public EditorTest {
protected:
    void newLoan() {
        auto& w = editor();
        w.cmdNew_Click();
        w.cmbLoanType->setCurrentIndex(0);
        w.txtLoanValue->setText(u"2000"_s);
        w.datEndDate->setFarsidate(u"1403/09/30"_s);
    }
    QVariant stored(const QString& column) {
        return t.db.scalar(
            u"select %1 from tblHRLoan where ID=%2"_s.arg(column, editor().txtID->text()));
    }
};

}  // namespace

TEST_F(HostileEditorTest, NotesThatLookLikeSqlAreStoredVerbatimAndRunNothingElse) {
    auto& w = editor();
    const QStringList before = schema(t.db);
    const QString others = contents(t.db);
    for (const Hostile& h : kHostile) {
        SCOPED_TRACE(h.typed.toStdString());
        newLoan();
        w.txtNotes->setText(h.typed);
        StatementTrace trace(t.module.DtEn().cnt().Database());
        w.cmdRegSave->click();
        ASSERT_EQ(t.messages->texts(), QStringList());
        const QString id = w.txtID->text();
        const QStringList writes = trace.writes();
        ASSERT_EQ(writes.size(), 5) << writes.join(u'\n').toStdString();
        EXPECT_EQ(writes[0], u"BEGIN IMMEDIATE"_s);
        EXPECT_TRUE(writes[1].startsWith(u"insert into tblHRLoan (TypeID"_s));
        EXPECT_TRUE(writes[2].endsWith(u", Notes='"_s + h.quoted + u"' Where ID= "_s + id))
            << writes[2].toStdString();
        EXPECT_EQ(writes[3], u"delete from tblHRLoanDetail Where LoanID="_s + id);
        EXPECT_EQ(writes[4], u"COMMIT"_s);
        EXPECT_EQ(stored(u"Notes"_s).toString(), h.typed);
        EXPECT_EQ(w.txtNotes->text(), h.typed);  // read back into the window
    }
    EXPECT_EQ(schema(t.db), before);
    EXPECT_EQ(contents(t.db, u"where ID <= 5"_s), others);

    // A very long text: the box holds what it can, and that is stored whole.
    newLoan();
    w.txtNotes->setText(QString(100000, QChar(0x0643)) + u"'"_s);
    w.cmdRegSave->click();
    EXPECT_EQ(t.messages->texts(), QStringList());
    EXPECT_EQ(w.txtNotes->text().size(), 32767);
    EXPECT_EQ(stored(u"Notes"_s).toString(), w.txtNotes->text());
}

TEST_F(HostileEditorTest, TheCountAndTheAmountsTakeDigitsOfEveryScriptAndRefuseTheRest) {
    auto& w = editor();
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w));
    const QString before = contents(t.db);

    // Pasted SQL in the count: refused by name before anything is written.
    newLoan();
    paste(w.txtPayBackNumber, u"3; drop table tblHRLoan"_s);
    w.cmdRegSave->click();
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_EQ(t.messages->last().text,
              u"تعداد اقساط «3; drop table tblHRLoan» عدد صحيح نيست؛ وام ثبت نشد."_s);
    EXPECT_EQ(contents(t.db), before);
    EXPECT_EQ(session().LoanFormMode, ModeNew);

    // Persian digits typed in the amount, Arabic-Indic ones grouped and pasted in the original
    // amount, Persian ones pasted in the count: the numbers they are.
    t.messages->shown.clear();
    w.txtLoanValue->setText(QString());
    type(w.txtLoanValue->lineEdit(), u"۲۵۰۰"_s);
    w.txtOriginalValue->lineEdit()->selectAll();
    paste(w.txtOriginalValue->lineEdit(), u"٣٬٠٠٠"_s);
    w.txtPayBackNumber->clear();
    paste(w.txtPayBackNumber, u"۱۲"_s);
    EXPECT_EQ(w.txtLoanValue->Value(), u"2500"_s);
    EXPECT_EQ(w.txtOriginalValue->Value(), u"3000"_s);
    // SQL pasted into an amount lands nowhere: the box keeps its amount.
    paste(w.txtLoanValue->lineEdit(), u"0; delete from tblHRLoan"_s);
    paste(w.txtLoanValue->lineEdit(), u"-5000"_s);
    EXPECT_EQ(w.txtLoanValue->Value(), u"2500"_s);
    w.cmdRegSave->click();
    EXPECT_EQ(t.messages->texts(), QStringList());
    EXPECT_EQ(stored(u"LoanValue"_s).toLongLong(), 2500);
    EXPECT_EQ(stored(u"OriginalLoanValue"_s).toLongLong(), 3000);
    EXPECT_EQ(stored(u"PayBackNumber"_s).toInt(), 12);

    // An amount past the largest the database holds: a clear message, nothing written.
    const QString saved = contents(t.db);
    w.cmdEdit_Click();
    w.txtLoanValue->lineEdit()->selectAll();
    paste(w.txtLoanValue->lineEdit(), u"99999999999999999999"_s);
    w.cmdRegSave->click();
    ASSERT_FALSE(t.messages->shown.isEmpty());
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_EQ(t.messages->last().text, u"سرريز عددي: مقدار خارج از محدوده است (Overflow)."_s);
    EXPECT_EQ(contents(t.db), saved);
    EXPECT_EQ(session().LoanFormMode, ModeEdit);
    w.hide();
}
