#include <vexa/VEXAXslTransformer.h>

#include "functions/FunctionGetDateTime.h"
#include "functions/TqXsltFunctionResAccess.h"
#include "functions/TqXsltFunctionTimer.h"

void VEXAXslTransformer::installBuiltInFunctions() {
    installExternalFunction("GetLocalizedString", FunctionGetLocalizedString());
    installExternalFunction("GetDateTime", FunctionGetDateTime());
    installExternalFunction("TimerCreate", FunctionTimerCreate());
    installExternalFunction("TimerStart", FunctionTimerStart());
    installExternalFunction("TimerStop", FunctionTimerStop());
    installExternalFunction("TimerTotal", FunctionTimerTotal());
    installExternalFunction("TimerReset", FunctionTimerReset());
    installExternalFunction("TimerDestroy", FunctionTimerDestroy());
}
