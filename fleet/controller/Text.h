#pragma once

#include "controller/Controller.h"

#include <iosfwd>
#include <string>
#include <string_view>

/// What the programs say of devices and values, on a terminal and to other programs.
namespace Fleet {

/// The members of one JSON object, in one line.
class JsonLine
{
public:
    /// Texts are made printable.
    JsonLine& Add(std::string_view key, std::string_view text);
    /// Takes any JSON.
    JsonLine& AddRaw(std::string_view key, std::string_view json);
    std::string ToString() const { return '{' + m_members + '}'; }

private:
    std::string m_members;
};

/// "online" or "offline".
std::string_view StateOf(Controller::Device const& device);

/// The bare form of a value as JSON.
std::string JsonOf(Legacy::If::ItemBase const& item);

/// The value of a parameter for people, with its unit.
std::string TextOf(Legacy::If::InfoItemHolder const& parameter, ItemPtr const& item);

/// The path of a parameter, made printable.
std::string PathOf(Controller::Device const& device, Legacy::If::InfoItemHolder const& parameter);

/// "door video/frame-rate: 25 Hz -> 30 Hz", and the same as JSON.
/// @{
std::string ChangeText(Controller::Change_t const& change);
std::string ChangeJson(Controller::Change_t const& change);
/// @}

/// All parameters of a device, one to a line.
void WriteParameters(std::ostream& out, Controller::Device const& device);

/// The device's directory as a document of JSON, for people too.
/// @return nothing; otherwise why it cannot be written.
std::string WriteDocument(std::ostream& out, Controller::Device const& device);

} // namespace Fleet
