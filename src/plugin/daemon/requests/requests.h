// What the plug-in says to the worker while it carries out a command: one-way notices, and questions whose answer is
// the next message that arrives. All on the connection of the daemon run and on its thread.
//
// A text with an unpaired surrogate throws utf8::invalid_utf16 from every operation here; nothing is then sent.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "plugin/transport/simple_socket.h"
#include "protocol/words.h"

namespace corvantis {

// Drains the thread's window message queue, so that the host's windows stay responsive; returns at once.
void pump_messages();

// Writes the text to the log, then sends "FUNCTION: STDOUT: MaxCorvantis: " (or "FUNCTION: WARN: MaxCorvantis: ") +
// text. A connection failure is only logged: "  failed to send this message to Tessaryn because: " + its text.
void sendStdoutLine(win32::simple_socket& connection, const std::u16string& text);
// The text is one of the protocol's beginnings, by which the worker knows what became of a file, and what follows it.
void sendStdoutLine(win32::simple_socket& connection, std::string_view beginning, const std::u16string& rest);
void sendWarnLine(win32::simple_socket& connection, const std::u16string& text);

// Send "FUNCTION: STDOUT: " or "FUNCTION: WARN: " + text. A connection failure is dropped silently.
void relayStdoutLine(win32::simple_socket& connection, const std::u16string& text);
void relayWarnLine(win32::simple_socket& connection, const std::u16string& text);

// Drain the message queue, then send "FUNCTION: SETTITLE " + title, or "FUNCTION: PROGRESS " + percent. A connection
// failure is dropped silently; sendProgress returns true in every case.
void sendTitle(win32::simple_socket& connection, const std::u16string& title);
bool sendProgress(win32::simple_socket& connection, float percent);

// The same two for the render callback, which drains the queue itself and reports what cannot be sent: they only send,
// and throw the socket's errors.
void postTitle(win32::simple_socket& connection, const std::u16string& title);
void postProgress(win32::simple_socket& connection, float percent);

// Questions. Each drains the message queue, sends its request and waits up to two minutes for an answer, which is
// positive when it starts with "SUCCESS: "; the rest of it, which may be empty, is the value. Failures:
// - a negative answer: std::invalid_argument, "Key " + key + " doesn't exist" unless told otherwise below;
// - a connection failure: hostsdk::RuntimeError "Error in " + the script function's name + ": " + the failure's text;
// - an answer that is no UTF-8: the utf8 exceptions of from_utf8.
// Keys reach the worker in the ANSI code page: characters that it lacks arrive replaced.

// Script function GetJobInfoEntry, or GetSubmitInfoEntry.
std::u16string requestJobInfoEntry(win32::simple_socket& connection, const std::u16string& key);
std::u16string requestSubmitInfoEntry(win32::simple_socket& connection, const std::u16string& key);
// GetSubmitInfoEntryElementCount. A value that is no 32-bit integer throws boost::bad_lexical_cast.
std::int32_t requestSubmitInfoEntryElementCount(win32::simple_socket& connection, const std::u16string& key);
// GetSubmitInfoEntryElement. The base of the index is the worker's.
std::u16string requestSubmitInfoEntryElement(win32::simple_socket& connection, std::int32_t index,
                                             const std::u16string& key);
// GetAuxFilename. Negative: "Aux file requested doesn't exist".
std::u16string requestAuxFilename(win32::simple_socket& connection, std::int32_t index);
// GetPathMappedFilename. Negative: "GetPathMappedFilename did not return successfully." The path arrives whole.
std::u16string requestPathMappedFilename(win32::simple_socket& connection, const std::u16string& path);

}  // namespace corvantis
