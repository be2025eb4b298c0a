// The settings under which whole routes are measured: every effect works.
#pragma once

namespace bench {

// A parameter string that lacks the output device at its end: 2 is the loudspeaker, 8 the headphones.
inline constexpr char kEverythingOn[] =
    "HIFIPARA=STEREOWIDEN_Enable=true;CompressionGain=70;Headphone_CompressionGain=70;VB_boostlin=50;"
    "EQ_trebleBoost=30;DS_stereoWidth=80;HP_SurroundWidth=90;DEN_centspeechgain=50;"
    "EQ_62hzgain=3;EQ_125hzgain=3;EQ_250hzgain=-2;EQ_500hzgain=-2;EQ_1khzgain=1;EQ_2khzgain=1;EQ_4khzgain=2;"
    "EQ_8khzgain=3;EQ_16khzgain=3;Headphone_EQ_62hzgain=3;Headphone_EQ_125hzgain=3;Headphone_EQ_250hzgain=-2;"
    "Headphone_EQ_500hzgain=-2;Headphone_EQ_1khzgain=1;Headphone_EQ_2khzgain=1;Headphone_EQ_4khzgain=2;"
    "Headphone_EQ_8khzgain=3;Headphone_EQ_16khzgain=3;output_device=";

}  // namespace bench
