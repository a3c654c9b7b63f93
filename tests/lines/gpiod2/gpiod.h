// SPDX-License-Identifier: MIT
// What GpioLines.h uses of the public interface of libgpiod 2, declared by hand, because Debian 12 does not
// have that version: with this header it is compiled, and nothing else. Nothing here is ever run.
#pragma once

#include <cstddef>

extern "C" {

struct gpiod_chip;
struct gpiod_chip_info;
struct gpiod_line_info;
struct gpiod_line_settings;
struct gpiod_line_config;
struct gpiod_request_config;
struct gpiod_line_request;
struct gpiod_edge_event_buffer;

enum gpiod_line_value {
    GPIOD_LINE_VALUE_ERROR = -1,
    GPIOD_LINE_VALUE_INACTIVE = 0,
    GPIOD_LINE_VALUE_ACTIVE = 1,
};

enum gpiod_line_direction {
    GPIOD_LINE_DIRECTION_AS_IS = 1,
    GPIOD_LINE_DIRECTION_INPUT,
    GPIOD_LINE_DIRECTION_OUTPUT,
};

enum gpiod_line_edge {
    GPIOD_LINE_EDGE_NONE = 1,
    GPIOD_LINE_EDGE_RISING,
    GPIOD_LINE_EDGE_FALLING,
    GPIOD_LINE_EDGE_BOTH,
};

bool gpiod_is_gpiochip_device(const char* path);
gpiod_chip* gpiod_chip_open(const char* path);
void gpiod_chip_close(gpiod_chip* chip);
gpiod_chip_info* gpiod_chip_get_info(gpiod_chip* chip);
void gpiod_chip_info_free(gpiod_chip_info* info);
const char* gpiod_chip_info_get_label(gpiod_chip_info* info);
gpiod_line_info* gpiod_chip_get_line_info(gpiod_chip* chip, unsigned int offset);
gpiod_line_request* gpiod_chip_request_lines(gpiod_chip* chip, gpiod_request_config* request,
                                             gpiod_line_config* lines);

void gpiod_line_info_free(gpiod_line_info* info);
const char* gpiod_line_info_get_consumer(gpiod_line_info* info);

gpiod_line_settings* gpiod_line_settings_new();
void gpiod_line_settings_free(gpiod_line_settings* settings);
int gpiod_line_settings_set_direction(gpiod_line_settings* settings, gpiod_line_direction direction);
int gpiod_line_settings_set_edge_detection(gpiod_line_settings* settings, gpiod_line_edge edge);
int gpiod_line_settings_set_output_value(gpiod_line_settings* settings, gpiod_line_value value);

gpiod_line_config* gpiod_line_config_new();
void gpiod_line_config_free(gpiod_line_config* lines);
int gpiod_line_config_add_line_settings(gpiod_line_config* lines, const unsigned int* offsets,
                                        std::size_t count, gpiod_line_settings* settings);

gpiod_request_config* gpiod_request_config_new();
void gpiod_request_config_free(gpiod_request_config* request);
void gpiod_request_config_set_consumer(gpiod_request_config* request, const char* consumer);

void gpiod_line_request_release(gpiod_line_request* request);
gpiod_line_value gpiod_line_request_get_value(gpiod_line_request* request, unsigned int offset);
int gpiod_line_request_set_value(gpiod_line_request* request, unsigned int offset, gpiod_line_value value);
int gpiod_line_request_get_fd(gpiod_line_request* request);
int gpiod_line_request_read_edge_events(gpiod_line_request* request, gpiod_edge_event_buffer* buffer,
                                        std::size_t most);

gpiod_edge_event_buffer* gpiod_edge_event_buffer_new(std::size_t capacity);
void gpiod_edge_event_buffer_free(gpiod_edge_event_buffer* buffer);
}
