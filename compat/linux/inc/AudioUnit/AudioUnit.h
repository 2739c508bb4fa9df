#pragma once

#include <AudioUnit/AUComponent.h>
#include <AudioUnit/AudioUnitProperties.h>
