// tivorabase: the common base of on-device camera processings.
// Include this one header to get the whole public API.
#pragma once

#include "ChannelNormalisation.h"
#include "NetworkBinding.h"
#include "SNPEMgr.h"
#include "SNPEParam.h"
#include "ScopedTrace.h"
#include "TivoraBase.h"
#include "TivoraLogPriority.h"
#include "TivoraLogger.h"
#include "TivoraPlugin.h"
#include "TivoraTraceSink.h"
#include "TivoraUtil.h"
#include "hvx/IProcessing.h"
#include "tvr_types.h"
