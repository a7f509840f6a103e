/// @file
/// One connected light source.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "device/models.h"
#include "include/qtr_orvex.h"
#include "log/export.h"
#include "serial/serial_link.h"

/// A light source of one model on one serial port: its connection, its exchanges, its cached state.
///
/// Failures are thrown as DriverException. Exchanges on one device follow each other under the
/// device's own mutex; opening and closing one device is for one thread at a time.
class ORVEX_API LightDevice {
  public:
    /// A closed device of a model, on a port whose path must contain "tty"; nothing is sent.
    ///
    /// @throws DriverException ORVEX_ERR_INVALID_ARG for another path or an unknown model
    LightDevice(OrvexType type, std::string port);
    LightDevice(const LightDevice&) = delete;
    LightDevice& operator=(const LightDevice&) = delete;
    /// Releases the port; sends nothing.
    ~LightDevice();

    /// @name Connection
    /// @{

    /// Opens the port and reads the device's state, or, when open already, counts one more open.
    /// @param baud bits per second, at least 9600; ignored when open already
    /// @return hDev(), or null when the port cannot be opened
    /// @throws DriverException see ORVEX_OpenDeviceEx
    void* openConnection(unsigned baud);
    /// Reads identity and state into the cache; part of opening.
    /// @throws DriverException when an exchange fails or the device has more than 16 positions
    void initDevice();
    /// Takes one open back; the last one ends the connection, whatever the device answers.
    /// @param leaveShutter do not close the shutter
    /// @return 0
    int closeConnection(bool leaveShutter);
    /// Clears the cached state; sends nothing.
    void resetDevice();

    /// Whether the port is open; waits for an exchange in progress.
    [[nodiscard]] bool isConnected() const;
    /// The handle: this object's address.
    [[nodiscard]] void* hDev() noexcept;
    /// How many opens have not been closed.
    [[nodiscard]] std::uint32_t getOpenCount() const noexcept;
    /// The model.
    [[nodiscard]] OrvexType getType() const noexcept;
    /// The port's path.
    [[nodiscard]] std::string getComPort() const;
    /// @}

    /// @name Exchanges
    /// @{

    /// Sends a named command with a value behind its prefix. The reply keeps its carriage return.
    ///
    /// @throws DriverException ORVEX_ERR_NOT_SUPPORTED for a name the model lacks; see
    ///         executeString
    void executeCommand(const std::string& name, std::string& reply, const std::string& value);
    /// Sends a request, ended by a carriage return unless it holds one, and reads the reply.
    /// The reply keeps its carriage return and is cut at 1024 bytes.
    /// @throws DriverException ORVEX_ERR_NOT_CONNECTED; ORVEX_ERR_INVALID_ARG above 1023 bytes;
    ///         ORVEX_ERR_IO for the device's error reply; ORVEX_ERR_SEND; ORVEX_ERR_RECV
    void executeString(const std::string& request, std::string& reply);
    /// Room for the longest reply.
    using ReplyBuffer = char[1024];
    /// executeCommand without a string for the reply.
    /// @return the reply in @p reply
    ORVEX_LOCAL std::string_view command(const std::string& name, std::string_view value,
                                         ReplyBuffer& reply);
    /// Whether the device answers the presence byte "A" with any byte.
    bool ping();
    /// Sends 1 to 1024 raw bytes. @return 0
    int writeArray(void* data, std::size_t length);
    /// Sends 1 to 1024 raw bytes, drops one byte of the answer and stores up to @p answerLength
    /// (1 to 1024) further ones. @return 0
    int readArray(void* request, std::size_t requestLength, void* answer, std::size_t answerLength);
    /// Writes to the port without the mutex.
    void Write(const void* data, std::size_t length);
    /// Reads from the port without the mutex. @return the number of bytes, also in @p received
    std::size_t Read(void* data, std::size_t length, std::size_t& received);
    /// Discards what the port has not read or sent. @return 0
    int Purge();
    /// @}

    /// @name State and switching
    /// @{

    /// Copies the cached state; slot k is the k-th fitted LED.
    void getOVStruct(OrvexStruct& out) const noexcept;
    /// Applies what differs from the cached state: intensities, then states.
    /// @throws DriverException ORVEX_ERR_INVALID_ARG for more channels than are fitted; see
    ///         executeString
    void setOVStruct(const OrvexStruct& in);
    /// Remembers whether switching is enabled and, if so, switches on or off.
    void switchOrvex(bool enable, bool on);
    /// Switches channels on (lamps: opens the shutter) and waits for a changed group to settle.
    /// @param channels positions from 1, separated by commas
    void switchInternalOn(const std::string& channels);
    /// Switches all channels off (lamps: closes the shutter).
    void switchInternalOff();
    /// @throws DriverException ORVEX_ERR_NOT_SUPPORTED for a model without a lamp
    void setLampState(bool on);
    /// @throws DriverException ORVEX_ERR_NOT_SUPPORTED for a model without a shutter
    void setShutterState(bool open);
    /// Whether switchOrvex has switched on.
    [[nodiscard]] bool getLampState() const noexcept;
    /// @}

  private:
    using Lock = std::lock_guard<std::mutex>;

    ORVEX_LOCAL SerialLink& link() const;
    ORVEX_LOCAL std::string_view exchange(std::string_view prefix, std::string_view value,
                                          ReplyBuffer& reply);
    ORVEX_LOCAL std::string query(const char* name);
    ORVEX_LOCAL bool isLed() const noexcept;
    ORVEX_LOCAL bool knows(const char* name) const;

    ORVEX_LOCAL void* reopen();
    ORVEX_LOCAL bool connectLink(unsigned baud);
    ORVEX_LOCAL std::string requestConnect();
    [[noreturn]] ORVEX_LOCAL void failSilentConnect();
    ORVEX_LOCAL void releaseLink();
    ORVEX_LOCAL void takeLeave(bool leaveShutter);

    ORVEX_LOCAL void readChannels();
    ORVEX_LOCAL void readLamp();
    ORVEX_LOCAL void readLeds();
    ORVEX_LOCAL void readLedStates();
    ORVEX_LOCAL void readLedLimits();
    ORVEX_LOCAL void readLedNames();
    ORVEX_LOCAL void readSerialNumber();

    ORVEX_LOCAL bool takeIntensities(const OrvexStruct& in);
    ORVEX_LOCAL bool takeStates(const OrvexStruct& in);
    ORVEX_LOCAL void sendIntensities();
    ORVEX_LOCAL void sendStates();
    ORVEX_LOCAL void awaitGroup();
    ORVEX_LOCAL OrvexChannel& channelInSlot(std::int32_t slot);

    mutable std::mutex mutex_;
    std::unique_ptr<SerialLink> link_;
    CommandTable commands_;
    OrvexType type_;
    std::string port_;
    std::atomic<std::uint32_t> connection_count_{0};
    std::vector<std::int32_t> active_channels_;
    OrvexStruct state_{};
    std::string switched_on_list_;
    std::string all_channels_list_;
    bool internal_on_ = false;
    bool switch_enabled_ = false;
    bool group_selection_changed_ = false;
};
