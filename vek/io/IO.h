#pragma once

// Every class of the input/output subsystem.
