namespace bedrock::network {}
