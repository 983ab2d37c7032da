// Does on purpose what a sanitizer must stop. Ends quietly where there is none.
#include <climits>
#include <cstring>
#include <memory>

int main(int argc, char **argv)
{
    if (argc != 2)
        return 2;
    volatile int result = 0;
    if (std::strcmp(argv[1], "heap-use-after-free") == 0) {
        auto owner = std::make_unique<int>(argc);
        const volatile int *const dangling = owner.get();
        owner.reset();
        result = *dangling;
    } else {
        int largest = INT_MAX;
        result = largest + argc;
    }
    return result == 0;
}
