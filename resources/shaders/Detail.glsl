// How fine the clouds are drawn.

// What kind of device draws, in Vulkan's numbers (VkPhysicalDeviceType), and the rows of the intermediate images. Both
// are filled in when the pipeline is made.
layout(constant_id = 0) const uint deviceKind = 4;
layout(constant_id = 1) const uint imageRows = 474;

// Wisps are finer than the octaves, for where those alone would look soft: on large screens, and from near. A software
// driver would compute them even where their share is nothing, as its branches cost both sides; so there they are left
// out up to a number of rows, which screens of 2880 x 1620 and more exceed, and smaller ones less wide than 16:10.
const bool isSoftwareDevice = deviceKind == 4;
const bool hasWisps = !isSoftwareDevice || imageRows > 500;
