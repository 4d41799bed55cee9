#include "functions/BuiltInFunctions.h"

#include "functions/FunctionGetDateTime.h"
#include "functions/TqXsltFunctionResAccess.h"
#include "functions/TqXsltFunctionTimer.h"

void installBuiltInFunctions(
    const std::function<void(const I18NString& name, const TqXsltFunction& function)>& install) {
    install("GetLocalizedString", FunctionGetLocalizedString());
    install("GetDateTime", FunctionGetDateTime());
    install("TimerCreate", FunctionTimerCreate());
    install("TimerStart", FunctionTimerStart());
    install("TimerStop", FunctionTimerStop());
    install("TimerTotal", FunctionTimerTotal());
    install("TimerReset", FunctionTimerReset());
    install("TimerDestroy", FunctionTimerDestroy());
}
