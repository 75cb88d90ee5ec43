#include "platform/help_viewer.h"

namespace vardelin::platform {

HelpViewer helpViewer()
{
    // The desktop's own choice of a browser.
    return {"xdg-open", "Help\\VardelinHelp.html"};
}

} // namespace vardelin::platform
