#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "link/codec.h"
#include "link/decoded.h"
#include "link/frame_reader.h"
#include "link/link_state.h"
#include "model/failure.h"
#include "model/panel_store.h"
#include "model/parts.h"

namespace lumeth {

// How the session reports to its owner. The owner writes log lines to the
// error log and redraws views; the session never does I/O itself.
class SessionObserver {
public:
    virtual ~SessionObserver() = default;
    // A part arrived intact and replaced its part of the store (or the
    // server's password), so the window can redraw.
    virtual void PartReceived(Part part) = 0;
    // A part is about to be written into the store: the store still holds
    // what it held before the download.
    virtual void PartArriving(Part /*part*/) {}
    // A fixed protocol line ("Message Length Error", "Invalid Data 2 bytes").
    virtual void WriteErrorLog(std::string_view message, std::string_view location) = 0;
    // A failure under the error-report convention ("Error # N - description").
    virtual void ReportError(std::string_view location, std::string_view category,
                             const Failure& failure) = 0;
    virtual void LogActivity(std::string_view text, std::string_view location) = 0;
};

// The protocol session: sans-I/O. Received bytes are appended with Receive,
// DecodeNext handles at most one message, and everything the session wants to
// send is queued and taken with TakeOutgoing (one entry per message, so the
// transmitter can apply its chunk rule per message).
class LinkSession {
public:
    LinkSession(PanelStore& store, LinkState& state, SessionObserver& observer,
                size_t maxMessage = kMaxMessageBytes);

    PanelStore& store() { return m_store; }
    LinkState& state() { return m_state; }

    // What Receive did with the bytes.
    enum class Received {
        Buffered,       // appended; a partial message waits for the rest
        MessageTooLong, // more bytes without an end marker than any message
                        // holds: logged, the buffer emptied; drop the link
    };
    // Append received bytes to the receive buffer, which never holds more
    // than `maxMessage` bytes after its last end marker.
    Received Receive(std::string_view bytes);
    // Decode and handle at most one message from the front of the buffer.
    void DecodeNext();
    bool BufferEmpty() const { return m_state.receiveBuffer.empty(); }

    // Messages queued for sending, oldest first; the queue is emptied.
    std::vector<std::string> TakeOutgoing();
    bool HasOutgoing() const { return !m_outgoing.empty(); }

    // Link opened or closed: receive buffer empty. Disconnected() also clears
    // the entered password and the password-received flag.
    void Connected();
    void Disconnected();

    // Queue a data request and replace the three pending masks.
    void RequestData(uint32_t maskA, uint32_t maskB, uint32_t maskC);
    // Queue the request for `parts` alone (replacing the pending masks).
    void RequestParts(PartSet parts);
    void RequestEverything();
    // Queue the set-password message built from state().serverPassword.
    void SendPassword();

    // The six Apply messages in order: display lists 11, 21, 31, 41, groups, buttons.
    std::vector<std::string> BuildApplyMessages() const;

    // The same with the location each failure is reported under and its
    // status (a failed one must not be sent); only the upload parts of
    // `parts`, in the same order.
    std::vector<codec::Upload> BuildApplySteps(PartSet parts = kUploadParts) const;

    // Queue one message for sending (the handlers' answers go this way).
    void Queue(std::string message);

private:
    void DecodeStep();
    // Remove the first `count` bytes of the receive buffer.
    void DropFront(size_t count);
    // Handle the whole frame of `length` bytes at the front of the buffer
    // and remove it.
    void HandleFront(size_t length);
    // Report what a decoded frame found, store its value and settle its
    // request bit.
    void Apply(Decoded&& decoded);

    PanelStore& m_store;
    LinkState& m_state;
    SessionObserver& m_observer;
    std::vector<std::string> m_outgoing;
    size_t m_maxMessage;
    // Bytes at the end of the receive buffer after its last end marker.
    size_t m_unterminated = 0;
};

} // namespace lumeth
