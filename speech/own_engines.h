// Engines that the user has described: a key file each, named "*.engine", in the user's
// ".quillon/lectora/engines" and, for everybody, in "/opt/quillon/lectora/etc/engines". Of two
// files of one name the user's counts, when it can be used.
//
//   [Engine]
//   Name=Piper
//   Language=en-US
//   Command=piper --model {voice} --output_file {wav} < {text}
//   Voices=/home/me/amy.onnx;/home/me/joe.onnx
//
// "{text}" is a file of UTF-8, "{wav}" the file to make of it, "{voice}" one of the voices,
// "{rate}" the speed as a factor: 1, and what the listener has chosen from "RateFrom" percent on
// (310 without that key). Each becomes one word of the shell. A file whose owner is neither the
// user nor root, or that others can write, is passed over: it is run.
#pragma once

#include <vector>

#include "speech/speech_engines.h"

std::vector<SpeechEngine> OwnEngines();
