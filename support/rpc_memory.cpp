// The memory functions that the stubs of both interfaces call.

#include <windows.h>

#include <rpc.h>
#include <rpcndr.h>

#include <cstdlib>

void* __RPC_USER MIDL_user_allocate(std::size_t bytes) {
    return std::malloc(bytes);
}

void __RPC_USER MIDL_user_free(void* memory) {
    std::free(memory);
}
