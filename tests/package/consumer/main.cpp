// A host program built against the installed package.
#include <vek/Vek.h>

#include <cstdio>
#include <cstring>

using namespace Quorvex::Vek;

int main()
{
    if (std::strcmp(GetResultName(RESULT_ARGUMENT_OUT_OF_RANGE), "RESULT_ARGUMENT_OUT_OF_RANGE") != 0) {
        std::puts("result names are wrong");
        return 1;
    }
    CObject* lock = CObject::CreateForLock();
    lock->Enter();
    lock->Exit();
    lock->Release();
    std::puts("consumer ok");
    return 0;
}
