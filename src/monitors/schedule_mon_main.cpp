#include "monitors/program.h"

// VDScheduleMon: will run profiles at the times of their schedules. So far it runs, says so in
// the registry, and ends when it is asked to.
int main()
{
    return vardelin::monitors::runProgram("VDScheduleMon");
}
