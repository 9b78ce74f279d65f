#include "agent/start_up.h"

int main() {
    return RunAgent(GetModuleHandleW(nullptr));
}
