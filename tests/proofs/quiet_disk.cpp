// Nothing in this program cuts the power, so no disk needs to be flushed for it: on a disk that
// others write to a flush takes a tenth of a second, and there are thousands of runs here. Runs of
// the program itself flush as ever.

extern "C" int syncfs(int /*fd*/) noexcept
{
    return 0;
}
extern "C" int fsync(int /*fd*/)
{
    return 0;
}
