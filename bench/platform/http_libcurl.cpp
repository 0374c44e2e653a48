// libcurl as its guide shows it: one easy handle that is used again, whose bodies are appended to a string.
// SPDX-License-Identifier: MIT
#include "platform/http_engine.h"

#include <curl/curl.h>

#include <stdexcept>

namespace {

std::size_t Append(char* bytes, std::size_t size, std::size_t count, void* body)
{
    static_cast<std::string*>(body)->append(bytes, size * count);
    return size * count;
}

class Libcurl {
public:
    explicit Libcurl(long bufferBytes)
        : FHandle(curl_easy_init())
    {
        if (!FHandle)
            throw std::runtime_error("no handle");
        curl_easy_setopt(FHandle, CURLOPT_WRITEFUNCTION, Append);
        if (bufferBytes > 0)
            curl_easy_setopt(FHandle, CURLOPT_BUFFERSIZE, bufferBytes);
    }
    Libcurl(const Libcurl&) = delete;
    Libcurl& operator=(const Libcurl&) = delete;
    ~Libcurl() { curl_easy_cleanup(FHandle); }

    std::size_t Get(const std::string& address)
    {
        std::string body;
        curl_easy_setopt(FHandle, CURLOPT_URL, address.c_str());
        curl_easy_setopt(FHandle, CURLOPT_WRITEDATA, &body);
        const CURLcode code = curl_easy_perform(FHandle);
        long status = 0;
        curl_easy_getinfo(FHandle, CURLINFO_RESPONSE_CODE, &status);
        if (code != CURLE_OK || status != 200)
            throw std::runtime_error(curl_easy_strerror(code) + (", status " + std::to_string(status)));
        return body.size();
    }

private:
    CURL* FHandle;
};

}

int main(int argc, char** argv)
{
    return bench::RunClient<Libcurl>(argc, argv);
}
