/* Stand-in for the platform's audio definitions: what the library reads of them. */
#ifndef ZOQ_PLATFORM_SYSTEM_AUDIO_H
#define ZOQ_PLATFORM_SYSTEM_AUDIO_H

/* Stream types, as passed with a volume change. */
typedef enum {
    AUDIO_STREAM_DEFAULT = -1,
    AUDIO_STREAM_VOICE_CALL = 0,
    AUDIO_STREAM_SYSTEM = 1,
    AUDIO_STREAM_RING = 2,
    AUDIO_STREAM_MUSIC = 3,
    AUDIO_STREAM_ALARM = 4,
    AUDIO_STREAM_NOTIFICATION = 5
} audio_stream_type_t;

/* Output devices, one bit each. */
enum {
    AUDIO_DEVICE_OUT_SPEAKER = 0x2,
    AUDIO_DEVICE_OUT_WIRED_HEADSET = 0x4,
    AUDIO_DEVICE_OUT_WIRED_HEADPHONE = 0x8,
    AUDIO_DEVICE_OUT_BLUETOOTH_A2DP = 0x80,
    AUDIO_DEVICE_OUT_BLUETOOTH_A2DP_HEADPHONES = 0x100
};

#endif
