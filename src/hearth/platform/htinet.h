// The public face of the HTTP client.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/platform/certificates.h>
#include <hearth/platform/http_client.h>
#include <hearth/platform/inet_error.h>
#include <hearth/platform/inet_resource_loader.h>
