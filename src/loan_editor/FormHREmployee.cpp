#include "loan_editor/FormHREmployee.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "controls/VarekSelector.h"
#include "loan_editor/LoanEditorTexts.h"
#include "session/CommandKeys.h"
#include "session/Module.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace T = editor_texts;
using controls::VarekSelector;

FormHREmployee::FormHREmployee(Module& module, QWidget* parent)
    : ModuleWindow(module, parent), module_(module) {
    setObjectName(u"FormHREmployee"_s);
    ApplyPersianStyle(this);
    setWindowTitle(T::PickerCaption);

    auto selector = [this](const QString& name) {
        auto* s = new VarekSelector(this);
        s->setObjectName(name);
        return s;
    };
    sltEmployeeID = selector(u"sltEmployeeID"_s);
    sltSupportEmployeeID1 = selector(u"sltSupportEmployeeID1"_s);
    sltSupportEmployeeID2 = selector(u"sltSupportEmployeeID2"_s);
    sltSupportEmployeeID3 = selector(u"sltSupportEmployeeID3"_s);
    cmdOK = new QPushButton(T::CaptionOK, this);
    cmdOK->setObjectName(u"cmdOK"_s);
    cmdOK->setAutoDefault(false);
    cmdExit = new QPushButton(T::CaptionExit, this);
    cmdExit->setObjectName(u"cmdExit"_s);
    cmdExit->setAutoDefault(false);

    auto* fields = new QGridLayout;
    const std::pair<QString, VarekSelector*> rows[] = {{T::LabelBorrower, sltEmployeeID},
                                                       {T::LabelGuarantor1, sltSupportEmployeeID1},
                                                       {T::LabelGuarantor2, sltSupportEmployeeID2},
                                                       {T::LabelGuarantor3, sltSupportEmployeeID3}};
    int row = 0;
    for (const auto& [text, box] : rows) {
        auto* label = new QLabel(text, this);
        label->setBuddy(box);
        fields->addWidget(label, row, 0);
        fields->addWidget(box, row, 1);
        ++row;
    }
    fields->setColumnStretch(1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addStretch(1);
    layout->addLayout(buttons);
    resize(520, 230);

    connect(sltEmployeeID, &VarekSelector::Changed, this,
            Guarded(&FormHREmployee::sltEmployeeID_Change));
    connect(cmdOK, &QPushButton::clicked, this, Guarded(&FormHREmployee::cmdOK_Click));
    connect(cmdExit, &QPushButton::clicked, this, Guarded(&FormHREmployee::cmdExit_Click));
    keys::Bind(*this, {{keys::Command::Save, cmdOK}});

    Form_Load();
}

void FormHREmployee::Form_Load() {
    for (VarekSelector* s :
         {sltEmployeeID, sltSupportEmployeeID1, sltSupportEmployeeID2, sltSupportEmployeeID3}) {
        s->setConnection(&module_.DtEn().cnt());
        s->setConnectionString(module_.session.SessionConnectionString);
        s->setMajorView(T::EmployeeMajorView);
        s->setMinorView(T::EmployeeMinorView);
        if (s == sltEmployeeID) {
            s->setFilter1(T::BorrowerFilter);
            s->setFilter2(T::BorrowerFilter);
        }
        s->Initialize();
    }
}

qint32 FormHREmployee::getNewEmployee(Module& module, const QString& existing, qint32& guarantor1,
                                      qint32& guarantor2, qint32& guarantor3) {
    FormHREmployee& window = module.Window<FormHREmployee>();
    window.existing_ = existing;
    struct Unload {
        Module& module;
        ~Unload() { module.UnloadWindow<FormHREmployee>(); }
    } unload{module};
    module.ShowModal(window);
    guarantor1 = window.guarantors_[0];
    guarantor2 = window.guarantors_[1];
    guarantor3 = window.guarantors_[2];
    return window.employee_;
}

bool FormHREmployee::isOnTheLoan(qint32 employeeId) const {
    return existing_.contains(u"("_s + QString::number(employeeId) + u")"_s);
}

void FormHREmployee::sltEmployeeID_Change() {
    if (sltEmployeeID->IsEmpty()) return;
    if (isOnTheLoan(sltEmployeeID->Value()))
        module_.ShowMessage(WarningTitle(), T::DuplicateEmployeeWarning);
    else
        cmdOK->setFocus();
}

void FormHREmployee::cmdOK_Click() {
    if (!controls::SelectorsNameEmployees(module_, {{sltEmployeeID, T::LabelBorrower},
                                                    {sltSupportEmployeeID1, T::LabelGuarantor1},
                                                    {sltSupportEmployeeID2, T::LabelGuarantor2},
                                                    {sltSupportEmployeeID3, T::LabelGuarantor3}}))
        return;
    if (sltEmployeeID->IsEmpty()) {
        module_.ShowMessage(ErrorTitle(), T::NoEmployeeError);
        return;
    }
    if (isOnTheLoan(sltEmployeeID->Value())) {
        module_.ShowMessage(WarningTitle(), T::DuplicateEmployeeWarning);
        return;
    }
    employee_ = sltEmployeeID->Value();
    guarantors_ = {sltSupportEmployeeID1->Value(), sltSupportEmployeeID2->Value(),
                   sltSupportEmployeeID3->Value()};
    close();
}

void FormHREmployee::cmdExit_Click() {
    employee_ = -1;
    guarantors_ = {-1, -1, -1};
    close();
}

}  // namespace kav
