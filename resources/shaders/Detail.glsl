// How fine the clouds are drawn.

// Rows of the intermediate images, filled in when the pipeline is made.
layout(constant_id = 1) const uint imageRows = 474;

// Wisps are finer than the octaves, for screens so large that those alone would look soft. Below so many rows they would
// hardly show, and a software driver would compute them all the same, as its branches cost both sides.
const bool hasWisps = imageRows > 500;
