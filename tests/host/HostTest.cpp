#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "../loan_editor/EditorFixture.h"
#include "controls/FlexGrid.h"
#include "host/PropertyBag.h"
#include "host/kavHRLoan1.h"
#include "loan_editor/FormHRLoan.h"
#include "search/FormSearch.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

class HostTest : public EditorTest {
protected:
    void SetUp() override {
        EditorTest::SetUp();
        session().SessionTitle.clear();
        host = std::make_unique<kavHRLoan1>(std::shared_ptr<Module>(&t.module, [](Module*) {}));
        host->setOLEConnectionstring(t.db.connectionString());
        host->setUserID(1);
        t.module.SetModalRunner([this](QDialog& d) {
            ++shown;
            modeWhenShown = session().LoanFormMode;
            titleWhenShown = d.windowTitle();
            return 0;
        });
    }
    std::unique_ptr<kavHRLoan1> host;
    int shown = 0;
    qint32 modeWhenShown = -1;
    QString titleWhenShown;
};

}  // namespace

class HostProperties : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QSettings settings{dir.filePath(u"host.ini"_s), QSettings::IniFormat};
    SettingsPropertyBag bag{settings, u"kavHRLoan1"_s};
};

// Each property goes to the settings under its own name with its own value, comes back the
// same, and leaves them when set back to its initial value; PRSEmployeeID is never stored.
TEST_F(HostProperties, RoundTripUnderTheirNamesUntilTheDefaultAgain) {
    struct Property {
        const char* name;
        QVariant value, initial;
    };
    const Property table[] = {
        {"UserID", 12, 0},
        {"PositionID", 34, 0},
        {"OLEConnectionstring", u"Provider=SQLite;Data Source=x.db"_s, u"0"_s},
        {"EmployeeID", 56, 0},
        {"Caption", u" وام "_s, QString()},
        {"ModeWithChilds", 7, 0},
    };
    kavHRLoan1 a;
    QSignalSpy changed(&a, &kavHRLoan1::propertyChanged);
    for (const Property& p : table) {
        a.setProperty(p.name, p.value);
        EXPECT_EQ(changed.takeFirst().at(0).toString(), QLatin1String(p.name));
    }
    a.setPRSEmployeeID(99);
    EXPECT_EQ(changed.takeFirst().at(0).toString(), u"PRSEmployeeID"_s);
    a.WriteProperties(bag);
    EXPECT_EQ(settings.allKeys().size(), 6);
    kavHRLoan1 b;
    b.setPRSEmployeeID(5);
    b.ReadProperties(bag);
    EXPECT_EQ(b.PRSEmployeeID(), 5);
    for (const Property& p : table) {
        SCOPED_TRACE(p.name);
        EXPECT_EQ(settings.value(u"kavHRLoan1/"_s + QLatin1String(p.name)).toString(),
                  p.value.toString());
        EXPECT_EQ(b.property(p.name).toString(), p.value.toString());
        EXPECT_EQ(kavHRLoan1().property(p.name).toString(), p.initial.toString());
        b.setProperty(p.name, p.initial);
    }
    b.WriteProperties(bag);
    EXPECT_EQ(settings.allKeys(), QStringList());
}

// A stored value a 16-bit property cannot hold is refused by name, never read as 0 in silence;
// the other properties are read all the same. (A value that is no number: the app's test.)
TEST_F(HostProperties, AStoredValueOutOfRangeIsRefusedByName) {
    settings.setValue(u"kavHRLoan1/EmployeeID"_s, u"40000"_s);
    settings.setValue(u"kavHRLoan1/PositionID"_s, u" 8 "_s);
    settings.setValue(u"kavHRLoan1/Caption"_s, u"عنوان"_s);
    kavHRLoan1 c;
    c.setEmployeeID(5);
    try {
        c.ReadProperties(bag);
        ADD_FAILURE() << "read without complaint";
    } catch (const KavError& e) {
        EXPECT_EQ(e.kind(), KavError::Kind::Overflow);
        EXPECT_EQ(e.message(),
                  u"مقدار ذخيره شده ويژگي EmployeeID («40000») خارج از محدوده عدد صحيح 16 بيتي "
                  u"(32768- تا 32767) است."_s);
    }
    EXPECT_EQ(c.UnreadProperties(), QStringList{u"EmployeeID"_s});
    EXPECT_EQ(c.EmployeeID(), 0);
    EXPECT_EQ(c.PositionID(), 8);
    EXPECT_EQ(c.Caption(), u"عنوان"_s);
}

// The mode follows PRSEmployeeID; the caption, as it stands, is the title unless blank. A
// user without the role is refused: the window is loaded but not shown.
TEST_F(HostTest, ClearShowModeTitlesAndRole) {
    struct Case {
        qint32 prs;
        QString caption, title;
        qint32 mode;
    };
    for (const Case& c :
         {Case{0, u"   "_s, u"وام کارمندان"_s, 3}, Case{-4, u" وام ويژه "_s, u" وام ويژه "_s, 3},
          Case{17, QString(), u"وام کارمندان"_s, 2}}) {
        host->setPRSEmployeeID(c.prs);
        host->setCaption(c.caption);
        host->ClearShow();
        EXPECT_EQ(modeWhenShown, c.mode) << c.prs;
        EXPECT_EQ(session().SessionTitle, c.title);
        EXPECT_EQ(session().SessionSearchTitle, c.title);
        EXPECT_FALSE(host->RoleWasRefused());
    }
    EXPECT_EQ(titleWhenShown, u"وام کارمندان (جديد)"_s);
    EXPECT_TRUE(t.messages->shown.isEmpty());
    host->setUserID(2);
    host->ClearShow();
    EXPECT_TRUE(host->RoleWasRefused());
    EXPECT_EQ(shown, 3);
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_EQ(t.messages->last().text,
              u"شما فاقد نقش مورد نظر هستيد. به نگهدارنده سيستم رجوع فرمائيد."_s);
    EXPECT_TRUE(t.module.HasWindow<FormHRLoan>());
}

TEST_F(HostTest, ViewNeedsNoRoleAndKeepsTheTitles) {
    host->setUserID(2);
    host->setCaption(u"عنوان"_s);
    session().SessionTitle = u"قبلي"_s;
    qint32 id = FinalLoan;
    host->View(id);
    EXPECT_EQ(id, FinalLoan);
    EXPECT_EQ(QList<int>({shown, modeWhenShown}), QList<int>({1, 0}));
    EXPECT_EQ(titleWhenShown, u"وام کارمندان (مشاهده)"_s);
    EXPECT_EQ(session().SessionTitle, u"قبلي"_s);
    EXPECT_EQ(session().SessionUserID, 2);
    EXPECT_EQ(t.module.Window<FormHRLoan>().txtCode->text(), u"7"_s);
    EXPECT_TRUE(t.messages->shown.isEmpty());
}

// What the entry methods raise reaches the host; a closed window is loaded afresh next time.
TEST_F(HostTest, EntryMethodsRaiseAndAClosedWindowIsLoadedAfresh) {
    host->setOLEConnectionstring(u"Provider=SQLite;Data Source=/no/such/folder/loans.db"_s);
    EXPECT_EQ(RaisedKind([&] { host->ClearShow(); }), KavError::Kind::Connection);
    qint32 id = FinalLoan;
    EXPECT_EQ(RaisedKind([&] { host->View(id); }), KavError::Kind::Connection);
    EXPECT_EQ(shown, 0);
    host->setOLEConnectionstring(t.db.connectionString());
    t.module.SetModalRunner([this](QDialog& d) {
        ++shown;
        d.show();
        d.close();  // the empty mode closes without a question
        return 0;
    });
    host->ClearShow();
    EXPECT_FALSE(t.module.HasWindow<FormHRLoan>());
    host->ClearShow();
    EXPECT_EQ(shown, 2);
}

// From the editor's search button to a found loan shown in the editor in view mode.
TEST_F(HostTest, SearchOpensAFoundLoanInTheEditor) {
    t.module.SetModalRunner([](QDialog& d) {
        if (auto* s = qobject_cast<FormSearch*>(&d)) {
            s->chkTempSave->setChecked(false);  // final loans only: loan 2
            s->cmdSearch->click();
            s->Flexsearchresult->setRow(1);
            s->Flexsearchresult_DblClick();
        }
        return 0;
    });
    host->ClearShow();
    FormHRLoan& editor = t.module.Window<FormHRLoan>();
    editor.cmdSearch->click();
    EXPECT_EQ(session().LoanFormMode, 0);
    EXPECT_EQ(editor.txtID->text(), u"2"_s);
    EXPECT_EQ(editor.txtCode->text(), u"7"_s);
    EXPECT_EQ(editor.windowTitle(), u"وام کارمندان (مشاهده)"_s);
    EXPECT_TRUE(t.module.HasWindow<FormSearch>());  // hidden, kept for the next search
    EXPECT_TRUE(t.messages->shown.isEmpty());
}

// The developer's connection names no account and no password, and when it does not open
// the bench puts the properties back, so it is never stored.
TEST_F(HostTest, TheBenchKeepsNoConnectionThatFailedToOpen) {
    for (const QString& empty : {u"Integrated Security=SSPI;"_s, u"Password=;"_s, u"User ID=;"_s})
        EXPECT_TRUE(kavHRLoan1::DeveloperConnectionString().contains(empty));
    // The developer's server is this machine (the loopback address), where none answers.
    host->setPositionID(4);
    host->setEmployeeID(6);
    host->Command2->click();
    EXPECT_EQ(shown, 0);
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_EQ(host->OLEConnectionstring(), t.db.connectionString());
    EXPECT_EQ(QList<int>({host->UserID(), host->PositionID(), host->EmployeeID()}),
              QList<int>({1, 4, 6}));
}
