#include "OutputRow.h"

OutputRow::OutputRow() = default;

OutputRow::~OutputRow() = default;
