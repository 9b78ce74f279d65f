#include "agent/rpc_runtime.h"

RpcRuntime g_rpc;
