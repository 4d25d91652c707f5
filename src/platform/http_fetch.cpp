#include "platform/http_fetch.h"

#include <httplib.h>

namespace velmora {

bool HttpGetText(const std::string& url, std::string& text) {
  // http://host[:port]/path; https needs a TLS build of the library and is refused here
  const std::string scheme = "http://";
  if (url.compare(0, scheme.size(), scheme) != 0) return false;
  size_t slash = url.find('/', scheme.size());
  std::string hostPart = url.substr(0, slash);
  std::string path = slash == std::string::npos ? "/" : url.substr(slash);
  httplib::Client cli(hostPart);
  cli.set_connection_timeout(10);
  cli.set_read_timeout(20);
  cli.set_follow_location(true);
  std::string body;
  bool tooBig = false;
  auto res = cli.Get(path.c_str(), [&](const char* data, size_t n) {
    if (body.size() + n > kMaxFetchedText) {
      tooBig = true;
      return false;
    }
    body.append(data, n);
    return true;
  });
  if (!res || tooBig || res->status != 200) return false;
  text = std::move(body);
  return true;
}

} // namespace velmora
