// A clerk's day on the demo database, through the window's own buttons: a new loan saved
// temporary, members added, one removed, the grid sorted, the loan saved final, returned to
// temporary, and another loan deleted.

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include "controls/FlexGrid.h"
#include "controls/QtPrinters.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"
#include "data/DemoData.h"
#include "loan_editor/FormHREmployee.h"
#include "loan_editor/FormHRLoan.h"
#include "support/ScriptedMessages.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

void type(QWidget* box, const QString& text) {
    box->setFocus();
    QTest::keyClicks(box, text);
}

}  // namespace

TEST(ClerkPath, NewLoanMembersFinalBackToTemporaryAndDeleteOnTheDemoDatabase) {
    QTemporaryDir dir;
    const QString file = dir.filePath(u"demo.db"_s);
    data::CreateDemoDatabase(file);
    TestDatabase probe(false);  // a second connection to read what the window wrote
    probe.db().close();
    probe.db().setDatabaseName(file);
    ASSERT_TRUE(probe.db().open());

    auto messages = std::make_shared<MessageScript>();
    Module module;
    module.session.SessionConnectionString = data::EmbeddedConnectionString(file);
    module.session.SessionUserID = data::DemoUserWithPermissions;
    module.session.SessionTitle = u"وام کارمندان"_s;
    module.SetMessageFactory(ScriptedFactory(messages));
    module.OpenSessionConnection();
    const QList<Row> active =
        probe.rows(u"select ID from tblEmployee where WorkStatusID <> 3 order by ID limit 3"_s);
    ASSERT_EQ(active.size(), 3);
    const qint32 member = active[0][u"id"_s].toInt(), guarantor = active[1][u"id"_s].toInt();
    module.SetModalRunner([&](QDialog& d) {
        if (auto* p = qobject_cast<FormHREmployee*>(&d)) {
            p->sltEmployeeID->setValue(member);
            emit p->sltEmployeeID->Changed();
            p->sltSupportEmployeeID1->setValue(guarantor);
            p->cmdOK->click();
        }
        return 0;
    });
    auto errors = [&] {
        QStringList e;
        for (const auto& m : messages->shown)
            if (m.title == u"خطا") e << m.text;
        return e;
    };

    auto& w = module.Window<FormHRLoan>();
    module.session.LoanFormMode = ModeEmpty;
    w.DisableLockComponent();
    w.show();
    w.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w));

    // A new loan, saved temporary.
    QTest::mouseClick(w.cmdNew, Qt::LeftButton);
    ASSERT_EQ(module.session.LoanFormMode, ModeNew);
    w.cmbLoanType->setCurrentIndex(0);
    emit w.cmbLoanType->activated(0);
    type(w.txtLoanValue->lineEdit(), u"24000000"_s);
    type(w.txtPayBackNumber, u"12"_s);
    w.TxtPerMonth->SetFocus();  // leaving the count computes the instalment and the end
    EXPECT_EQ(w.TxtPerMonth->Value(), u"2000000"_s);
    ASSERT_FALSE(w.datEndDate->IsEmpty());
    QTRY_VERIFY(w.cmdRegSave->isEnabled());
    const int loansBefore = probe.scalar(u"select count(*) from tblHRLoan"_s).toInt();
    QTest::mouseClick(w.cmdRegSave, Qt::LeftButton);
    ASSERT_EQ(module.session.LoanFormMode, ModeView) << errors().join(u'\n').toStdString();
    const QString id = w.txtID->text();
    EXPECT_EQ(id, probe.scalar(u"select max(ID) from tblHRLoan"_s).toString());
    EXPECT_EQ(probe.scalar(u"select count(*) from tblHRLoan"_s).toInt(), loansBefore + 1);
    EXPECT_TRUE(w.txtCode->text().isEmpty());

    // Members: one picked with a guarantor, then everyone with an ordinance in the period.
    QTest::mouseClick(w.cmdEdit, Qt::LeftButton);
    ASSERT_EQ(module.session.LoanFormMode, ModeEdit);
    QTRY_VERIFY(w.cmdAddEmp->isEnabled());
    QTest::mouseClick(w.cmdAddEmp, Qt::LeftButton);
    ASSERT_EQ(w.FlexEmployee->Rows(), 2);
    EXPECT_EQ(w.FlexEmployee->TextMatrix(1, 1), QString::number(member));
    EXPECT_EQ(w.FlexEmployee->TextMatrix(1, 7), QString::number(guarantor));
    QTest::mouseClick(w.cmdAddOrdinanceEmployees, Qt::LeftButton);
    const int members = w.FlexEmployee->Rows() - 1;
    ASSERT_GT(members, 2);
    QTest::mouseClick(w.cmdRegSave, Qt::LeftButton);
    const QString count = u"select count(*) from tblHRLoanDetail where LoanID="_s + id;
    EXPECT_EQ(probe.scalar(count).toInt(), members);

    // One removed, the grid sorted by personnel code, then the final save.
    QTest::mouseClick(w.cmdEdit, Qt::LeftButton);
    QTableView* view = w.FlexEmployee->view();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                      view->visualRect(view->model()->index(1, 3)).center());
    ASSERT_EQ(w.FlexEmployee->Row(), 2);
    ASSERT_TRUE(w.cmdDeleteEmp->isEnabled());
    QTest::mouseClick(w.cmdDeleteEmp, Qt::LeftButton);
    EXPECT_EQ(probe.scalar(count).toInt(), members - 1);
    EXPECT_EQ(w.FlexEmployee->Rows() - 1, members - 1);
    QHeaderView* header = view->horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(2) + 5, header->height() / 2));
    for (int r = 2; r < w.FlexEmployee->Rows(); ++r) {
        auto code = [&](int row) {
            return w.FlexEmployee->TextMatrix(row, 2).remove(u'/').toLongLong();
        };
        EXPECT_LE(code(r - 1), code(r));
    }
    QTRY_VERIFY(w.cmdFinSave->isEnabled());
    QTest::mouseClick(w.cmdFinSave, Qt::LeftButton);
    ASSERT_EQ(module.session.LoanFormMode, ModeView) << errors().join(u'\n').toStdString();
    const QString code = probe.scalar(u"select Code from tblHRLoan where ID="_s + id).toString();
    EXPECT_FALSE(code.isEmpty());
    EXPECT_EQ(w.txtCode->text(), code);  // the number shown
    EXPECT_EQ(probe.scalar(count).toInt(), members - 1);

    // Back to temporary.
    ASSERT_TRUE(w.cmdBacktoTemp->isEnabled());
    QTest::mouseClick(w.cmdBacktoTemp, Qt::LeftButton);
    EXPECT_TRUE(probe.scalar(u"select Code from tblHRLoan where ID="_s + id).isNull());
    EXPECT_TRUE(w.txtCode->text().isEmpty());
    EXPECT_TRUE(w.cmdDelete->isEnabled());

    // Another temporary loan, without payslip rows, deleted.
    const qint32 other =
        probe
            .scalar(u"select min(ID) from tblHRLoan where Code is null and ID <> "_s + id +
                    u" and ID not in (select LoanID from tblHRMonthlyPaiedLoan)"_s)
            .toInt();
    ASSERT_GT(other, 0);
    w.ViewPRSLoansInfo(other);
    QTest::mouseClick(w.cmdDelete, Qt::LeftButton);
    EXPECT_EQ(module.session.LoanFormMode, ModeEmpty);
    EXPECT_EQ(probe.scalar(u"select count(*) from tblHRLoan where ID=%1"_s.arg(other)).toInt(), 0);
    EXPECT_EQ(
        probe.scalar(u"select count(*) from tblHRLoanDetail where LoanID=%1"_s.arg(other)).toInt(),
        0);
    EXPECT_EQ(errors(), QStringList());
    w.hide();
}
