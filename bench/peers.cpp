#include "bench/peers.h"

#include <libserial/SerialPort.h>
#include <libserialport.h>
#include <termios.h>

#include <asio.hpp>
#include <stdexcept>

namespace orvex_bench {

namespace {

constexpr char kTerminator = '\r';

class Asio : public Peer {
  protected:
    explicit Asio(const std::string& path) : port_(context_, path) {
        port_.set_option(asio::serial_port::baud_rate(9600));
    }

    void request(const std::string& text) {
        ::tcflush(port_.native_handle(), TCIOFLUSH);
        asio::write(port_, asio::buffer(text));
    }

    asio::io_context context_;
    asio::serial_port port_;
};

class AsioByBytes final : public Asio {
  public:
    explicit AsioByBytes(const std::string& path) : Asio(path) {}

    void exchange(const std::string& text, std::string& reply) override {
        request(text);
        char byte = 0;
        do {
            asio::read(port_, asio::buffer(&byte, 1));
            reply += byte;
        } while (byte != kTerminator);
    }
};

class AsioInBulk final : public Asio {
  public:
    explicit AsioInBulk(const std::string& path) : Asio(path) {}

    void exchange(const std::string& text, std::string& reply) override {
        request(text);
        asio::read_until(port_, asio::dynamic_buffer(reply), kTerminator);
    }
};

class LibSerialLine final : public Peer {
  public:
    explicit LibSerialLine(const std::string& path) { port_.Open(path); }

    void exchange(const std::string& text, std::string& reply) override {
        port_.FlushIOBuffers();
        port_.Write(text);
        port_.ReadLine(reply, kTerminator, 500);
    }

  private:
    LibSerial::SerialPort port_;
};

void require(bool succeeded, const char* what) {
    if (!succeeded) {
        throw std::runtime_error(what);
    }
}

class LibSerialPort final : public Peer {
  public:
    explicit LibSerialPort(const std::string& path) {
        require(sp_get_port_by_name(path.c_str(), &port_) == SP_OK, "sp_get_port_by_name");
        require(sp_open(port_, SP_MODE_READ_WRITE) == SP_OK, "sp_open");
    }
    ~LibSerialPort() override {
        sp_close(port_);
        sp_free_port(port_);
    }

    void exchange(const std::string& text, std::string& reply) override {
        sp_flush(port_, SP_BUF_BOTH);
        sp_blocking_write(port_, text.data(), text.size(), 500);
        char byte = 0;
        do {
            require(sp_blocking_read(port_, &byte, 1, 500) == 1, "sp_blocking_read");
            reply += byte;
        } while (byte != kTerminator);
    }

  private:
    sp_port* port_ = nullptr;
};

}  // namespace

std::unique_ptr<Peer> asioByBytes(const std::string& path) {
    return std::make_unique<AsioByBytes>(path);
}
std::unique_ptr<Peer> asioInBulk(const std::string& path) {
    return std::make_unique<AsioInBulk>(path);
}
std::unique_ptr<Peer> libserial(const std::string& path) {
    return std::make_unique<LibSerialLine>(path);
}
std::unique_ptr<Peer> libserialport(const std::string& path) {
    return std::make_unique<LibSerialPort>(path);
}

}  // namespace orvex_bench
