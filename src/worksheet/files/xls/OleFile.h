#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The OLE2 container in which Windows programs keep streams of bytes.
namespace lodex::ole {

/// True when the bytes begin as a container does.
bool isContainer(std::string_view bytes);

struct Stream {
  std::string name;  // as it was asked for
  std::string bytes;
  bool complete = true;  // false when there are fewer bytes than the container announces
};

/// The first of the named streams at the container's root, sought in that order and without regard
/// to case. Empty when none exists; throws FileError when the container is damaged.
std::optional<Stream> readStream(std::string_view container,
                                 const std::vector<std::string_view>& names);

/// True when the container's root holds one of the named streams; never throws.
bool hasStream(std::string_view container, const std::vector<std::string_view>& names);

/// A container with one stream.
std::string writeContainer(std::string_view streamName, std::string_view bytes);

}  // namespace lodex::ole
