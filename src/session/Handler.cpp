#include "session/Handler.h"

#include "base/Errors.h"

using namespace Qt::StringLiterals;

namespace kav {

void ShowCurrentError(const Module& module) noexcept {
    QString text;
    try {
        throw;
    } catch (const KavError& e) {
        text = e.message();
    } catch (const std::exception& e) {
        text = u"خطاي پيش بيني نشده: "_s + QString::fromUtf8(e.what());
    } catch (...) {
        text = u"خطاي پيش بيني نشده."_s;
    }
    try {
        module.ShowMessage(ErrorTitle(), text);
    } catch (...) {
    }
}

}  // namespace kav
