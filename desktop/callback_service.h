#pragma once

/// Takes the documents that the agent sends while a read runs.
class ItemReceiver {
  public:
    ItemReceiver() = default;
    ItemReceiver(const ItemReceiver&) = delete;
    ItemReceiver& operator=(const ItemReceiver&) = delete;
    virtual ~ItemReceiver() = default;

    /// Called on a thread of the RPC runtime, one call at a time. The agent waits for its return before it
    /// goes on to the next item.
    virtual void Receive(const wchar_t* document) noexcept = 0;
};

/// Serves the callback interface from its construction to the end of the process. One can exist.
///
/// The runtime is not told to stop: its threads would then be ending while the process does, and Wine's
/// processes crash now and then when a thread is just ending. Threads that wait are no trouble.
class CallbackService {
  public:
    /// Throws a Failure if the endpoint is taken.
    CallbackService();
    CallbackService(const CallbackService&) = delete;
    CallbackService& operator=(const CallbackService&) = delete;
    ~CallbackService() = default;
};

/// Directs the documents that arrive to a receiver as long as it exists. Documents that nobody waits for are
/// dropped.
class Reception {
  public:
    explicit Reception(ItemReceiver& receiver);
    Reception(const Reception&) = delete;
    Reception& operator=(const Reception&) = delete;
    /// Waits for a document that is being received.
    ~Reception();
};
