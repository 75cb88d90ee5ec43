#include "monitors/program.h"

// VDFileMon: will watch the sources of the primary profile and queue the files that change
// there. So far it runs, says so in the registry, and ends when it is asked to.
int main()
{
    return vardelin::monitors::runProgram("VDFileMon");
}
