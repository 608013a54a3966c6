#pragma once

#include "helpers/snmp_datagrams.h"
