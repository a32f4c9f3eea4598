#pragma once

#include <exception>
#include <string>

namespace Calder::Values {

/// What is wrong with values, without a place: whoever knows the place adds it.
class ValueError : public std::exception {
  public:
    explicit ValueError(std::string message) : m_message(std::move(message)) {}

    std::string const& message() const { return m_message; }
    char const* what() const noexcept override { return m_message.c_str(); }

  private:
    std::string m_message;
};

} // namespace Calder::Values
