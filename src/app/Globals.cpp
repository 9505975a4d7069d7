#include "Globals.h"

BLooper* gr_slave = NULL;
BarWindow* gr_manager = NULL;
settings* gr_settings = NULL;

const char* const gr_app_name = "Glimrow";
const char* const gr_signature = "application/x-vnd.KQ-Glimrow";
const char* const gr_settings_name = "settings";
const char* const gr_layers_name = "layers";
const char* const gr_targets_name = "targets";
const char* const gr_shelf_name = "shelf";
