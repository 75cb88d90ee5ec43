#include "monitors/program.h"

// VDIdleMon: will watch for the machine's idle time and run the profiles that wait for it. So
// far it runs, says so in the registry, and ends when it is asked to.
int main()
{
    return vardelin::monitors::runProgram("VDIdleMon");
}
